// The closed list of pixmap formats the station stores scans in.
#include <gtest/gtest.h>

#include <QTemporaryDir>

#include "suite/cel/cel_cel.h"
#include "suite/cel/cel_pixmap.h"
#include "suite/cel/celio_manager.h"
#include "suite/cel/pixmap_format_list.h"

TEST(PixmapFormatList, TheWriterHonoursEveryListedFormatAndNoOtherNumberIsKnown)
{
    const TUPixmapFormatList list(7);
    // The numbers are what settings files store.
    EXPECT_EQ(QStringList({list.pixmapNameFromFormat(2), list.pixmapNameFromFormat(4), list.pixmapNameFromFormat(24)}),
              QStringList({"SCAN", "SCAN32", "TIFF"}));
    QTemporaryDir dir;
    auto cel = CEL_Cel::create(0);
    cel->setRepresentation(CEL_RepresentationPtr(UT_makeShared<CEL_PixmapRGBA8>(3, 3)));
    for (const TUPixmapFormat &f : list.formats()) {
        const QString path = dir.filePath(QStringLiteral("f%1.%2").arg(f.number).arg(list.fileExtentionFromFormat(f.number)));
        EXPECT_TRUE(CELIO_Manager::getInstance().write(cel.get(), path, f.extension, f.name, {})) << f.name;
    }
    for (int unknown : {-1, 0, 1, 3, 25, 1000}) {
        EXPECT_TRUE(list.fileExtentionFromFormat(unknown).isEmpty());
        EXPECT_TRUE(list.pixmapNameFromFormat(unknown).isEmpty());
    }
    EXPECT_TRUE(TUPixmapFormatList(3).formats().isEmpty());
}
