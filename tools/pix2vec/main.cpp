// pix2vec: vectorizes a picture into a vector drawing, prints what a drawing
// file holds, or works the vectorize queue.
//   pix2vec [options] -file IN -outfile OUT.kwg|OUT.svg|OUT.png
//   pix2vec --info FILE.kwg
//   pix2vec --worker NAME [--db URL] [--env NAME] [--lease SECONDS] [--until-empty] [--svg]
#include <QCoreApplication>
#include <QTextStream>

#include <cstdio>

#include "suite/base/whoami.h"
#include "tools/pix2vec/drawing_info.h"
#include "tools/pix2vec/vectorize_file.h"
#include "tools/pix2vec/vectorize_worker.h"
#include "vectorize/pix2vec_options.h"

namespace {

int vectorizeCommand(const QStringList &args) {
    TUPix2vecOptions options;
    currentVectorizeOptions() = &options;
    options.parseArguments(int(args.size()), args, true, false);
    if (options.help) return 0;
    QTextStream err(stderr);
    if (options.errors || args.size() <= 1) {
        if (!options.lastError.isEmpty()) err << options.lastError.trimmed() << '\n';
        err << "usage: pix2vec [options] -file IN -outfile OUT.kwg|OUT.svg|OUT.png\n"
               "       pix2vec --info FILE.kwg\n"
               "       pix2vec --worker NAME [--db URL] [--env NAME] [--lease SECONDS] [--until-empty] [--svg]\n"
               "       pix2vec -help [all|io|register|filter|rgb|color|bubble|4colours]\n";
        return 1;
    }
    if (options.file.isEmpty() || !isDrawingOutputPath(options.outfile)) {
        err << QCoreApplication::translate("VectorizeDrawing", "Invalid file specifier.") << '\n';
        return 1;
    }
    const VectorizeFileResult result = vectorizeFile(options, options.file, {options.outfile});
    if (!result.ok) {
        err << result.message << '\n';
        return 1;
    }
    QTextStream(stdout) << options.outfile << ": " << result.layers << " layers, " << result.strokes << " strokes\n";
    return 0;
}

}  // namespace

int main(int argc, char **argv) {
    QCoreApplication app(argc, argv);
    whoami::setBinName(QString::fromLocal8Bit(argv[0]));
    const QStringList args = app.arguments();
    if (args.size() >= 2 && args[1] == QLatin1String("--info")) {
        QTextStream out(stdout), err(stderr);
        if (args.size() != 3) {
            err << "usage: pix2vec --info FILE.kwg\n";
            return 1;
        }
        return printDrawingInfo(args[2], out, err) ? 0 : 1;
    }
    if (args.size() >= 2 && args[1] == QLatin1String("--worker")) return runVectorizeWorker(args.mid(1));
    return vectorizeCommand(args);
}
