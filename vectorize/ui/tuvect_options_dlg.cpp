#include "vectorize/ui/tuvect_options_dlg.h"

#include <QHBoxLayout>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

TUVectOptionsDlg::TUVectOptionsDlg(QWidget *parent, const QString &path)
    : QDialog(parent), m_styles(loadVectorizationStyles(path)) {
    setObjectName(QStringLiteral("vectoptionsdlg"));
    setWindowTitle(tr("Vectorization Styles"));
    setMinimumSize(175, 200);

    m_list = new QListWidget(this);
    m_ok = new QPushButton(tr("&OK"), this);
    m_cancel = new QPushButton(tr("&Cancel"), this);
    m_ok->setDefault(true);

    auto *buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(m_ok);
    buttons->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_list);
    layout->addLayout(buttons);

    for (const VectorizationStyle &style : m_styles) {
        m_list->addItem(style.name);
        if (style.selected) m_list->setCurrentRow(m_list->count() - 1);
    }
    // Connected after filling, so that the start choice stays the default style.
    connect(m_list, &QListWidget::currentItemChanged, this, &TUVectOptionsDlg::selectItem);
    connect(m_ok, &QPushButton::clicked, this, &QDialog::accept);
    connect(m_cancel, &QPushButton::clicked, this, &TUVectOptionsDlg::reject);
}

const VectorizationStyle *TUVectOptionsDlg::selectedStyle() const {
    for (const VectorizationStyle &style : m_styles)
        if (style.selected) return &style;
    return nullptr;
}

QString TUVectOptionsDlg::currentOptions() const {
    const VectorizationStyle *style = selectedStyle();
    return style ? style->options : QString();
}

QString TUVectOptionsDlg::currentName() const {
    const VectorizationStyle *style = selectedStyle();
    return style ? style->name : QString();
}

void TUVectOptionsDlg::selectItem(QListWidgetItem *item) {
    const int row = m_list->row(item);
    if (row < 0 || row >= static_cast<int>(m_styles.size())) return;
    for (int i = 0; i < static_cast<int>(m_styles.size()); ++i) m_styles[i].selected = i == row;
}

void TUVectOptionsDlg::show() {
    QListWidgetItem *current = m_list->currentItem();
    m_shownRow = current && current->isSelected() ? m_list->row(current) : -1;
    QDialog::show();
}

void TUVectOptionsDlg::reject() {
    if (m_shownRow >= 1)
        m_list->setCurrentRow(m_shownRow);
    else if (QListWidgetItem *current = m_list->currentItem())
        current->setSelected(false);
    QDialog::reject();
}
