#include "app/tuabout_dialog.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QVBoxLayout>

#include "app/who_app_info.h"

TUAboutDialog::TUAboutDialog(const WHO_AppInfo &info, QWidget *parent) : QDialog(parent) {
    setWindowTitle(tr("About %1").arg(info.name));
    auto *box = new QVBoxLayout(this);
    box->setContentsMargins(20, 20, 20, 10);
    box->setSpacing(8);

    m_name = new QLabel(info.name, this);
    QFont heading = m_name->font();
    heading.setBold(true);
    heading.setPointSizeF(heading.pointSizeF() * 1.6);
    m_name->setFont(heading);
    m_name->setAlignment(Qt::AlignCenter);
    box->addWidget(m_name);

    m_version = new QLabel(tr("Version %1").arg(info.version), this);
    m_version->setAlignment(Qt::AlignCenter);
    m_version->setTextInteractionFlags(Qt::TextSelectableByMouse);
    box->addWidget(m_version);

    auto *qt = new QLabel(tr("Built with Qt %1, running on Qt %2").arg(QStringLiteral(QT_VERSION_STR), qVersion()),
                          this);
    qt->setAlignment(Qt::AlignCenter);
    box->addWidget(qt);

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    box->addSpacing(10);
    box->addWidget(buttons);
    setFixedSize(sizeHint().expandedTo(QSize(320, 0)));
}
