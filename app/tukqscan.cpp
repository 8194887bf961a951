#include "app/tukqscan.h"

#include <QAction>
#include <QCheckBox>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSplitter>
#include <QStyle>
#include <QVBoxLayout>

#include "app/param_dlg.h"
#include "app/scan_image.h"
#include "app/station_list_view.h"
#include "app/tudrawing_selector.h"
#include "app/tumanual_list_dlg.h"
#include "app/tumenu_button.h"
#include "app/who_app_info.h"
#include "scan/transport/scsi_transport.h"
#include "suite/base/tumessage.h"
#include "workflow/selection_menus.h"
#include "workflow/config.h"
#include "vectorize/ui/tuvect_options_dlg.h"

namespace {
constexpr int kSettingsWidth = 300;
constexpr int kMargin = 5;

QLabel *centredLabel(const QString &text, QWidget *parent) {
    auto *label = new QLabel(text, parent);
    label->setAlignment(Qt::AlignCenter);
    return label;
}
}  // namespace

TUKqScan::TUKqScan(TUDbAccess *databaseAccess, TUDbSelector *databaseSelector, bool debug, bool scsiDebug,
                   QWidget *parent)
    : QMainWindow(parent), m_database(databaseAccess), m_dbSelector(databaseSelector), m_debug(debug),
      m_scsiDebug(scsiDebug), m_appInfo(std::make_unique<WHO_AppInfo>(app_info_of(QStringLiteral("Scan")))) {
    setMinimumSize(1000, 850);
    buildMenus();

    auto *central = new QWidget(this);
    auto *columns = new QHBoxLayout(central);
    columns->setContentsMargins(kMargin, kMargin, kMargin, kMargin);

    auto *left = new QVBoxLayout;
    m_splitter = new QSplitter(Qt::Vertical, central);
    m_splitter->addWidget(buildSettings());
    m_splitter->addWidget(buildLowerPane());
    m_splitter->setSizes({500, 1});
    m_splitter->setFixedWidth(kSettingsWidth);
    left->addWidget(m_splitter);
    columns->addLayout(left);

    auto *right = new QVBoxLayout;
    m_imageFrame = new QFrame(central);
    m_imageFrame->setObjectName(QStringLiteral("_imageSview"));
    auto *imageBox = new QVBoxLayout(m_imageFrame);
    imageBox->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    m_mainImage = new TUScanImage(0, m_imageFrame);
    imageBox->addWidget(m_mainImage);
    right->addWidget(m_imageFrame);
    columns->addLayout(right, 1);
    setCentralWidget(central);

    m_listView = std::make_unique<StationListView>(m_list);
    add_fixed_menu_entries(this);
    m_selection[SelectionButton::Scanner]->setTextLimit(20);
    m_boxes[SessionCheckBox::OpticalRegistration]->setChecked(true);
    connectControls();

    if ((debug || scsiDebug) && TUMessage::instance()) TUMessage::instance()->setDebugMode(true);
    LMV_scsi_set_debug(scsiDebug);
}

TUKqScan::~TUKqScan() {
    // A style list still alive belongs to a session that is still alive: it
    // goes now, before this window takes its children along.
    if (m_styleDialog && m_config && vect_options_of_ScanConfig(m_config) == m_styleDialog.data())
        set_vect_options_of_ScanConfig(m_config, nullptr);
}

void TUKqScan::buildMenus() {
    QMenu *file = menuBar()->addMenu(tr("&File"));
    m_actions[SessionAction::OpenDrawings] =
        file->addAction(tr("&Open Drawings..."), QKeySequence(Qt::CTRL | Qt::Key_O), this, &TUKqScan::openDrawings);
    file->addAction(tr("&Load From File..."), this, &TUKqScan::loadFromFile);
    m_actions[SessionAction::BuildManualList] =
        file->addAction(tr("Build &Manual List..."), this, &TUKqScan::buildManualList);
    file->addSeparator();
    file->addAction(tr("&Exit"), QKeySequence(Qt::CTRL | Qt::Key_X), this, &QWidget::close);

    m_editMenu = menuBar()->addMenu(tr("&Edit"));
    m_actions[SessionAction::EditMenu] = m_editMenu->menuAction();
    m_editMenu->addAction(tr("Drawing &List..."), this, &TUKqScan::showDrawingSelector);
    m_editMenu->addAction(tr("&Reverse Drawing List"), this, &TUKqScan::reverseDrawingList);
    m_editMenu->addAction(tr("&Vectorize Style..."), this, &TUKqScan::vectorizeStyle);
    QAction *scanInfo = m_editMenu->addAction(tr("Create ScanInfo File"));
    connect(scanInfo, &QAction::toggled, this, &TUKqScan::createScanInfoFile);
    m_actions[SessionAction::CreateScanInfo] = scanInfo;

    m_scannerMenu = menuBar()->addMenu(tr("&Scanner"));
    m_actions[SessionAction::Info] = m_scannerMenu->addAction(tr("&Info..."), this, &TUKqScan::scannerInfo);
    m_actions[SessionAction::EjectPage] = m_scannerMenu->addAction(tr("&Eject Page"), this, &TUKqScan::ejectPage);

    QMenu *helpMenu = menuBar()->addMenu(tr("&Help"));
    helpMenu->addAction(tr("About..."), this, &TUKqScan::about);
    helpMenu->addAction(tr("&Online Help..."), QKeySequence(Qt::Key_F1), this, &TUKqScan::help);
    m_debugModeAction = helpMenu->addAction(tr("Debug Mode"), this, &TUKqScan::DebugMode);
    QAction *dark = helpMenu->addAction(tr("Dark Style"));
    dark->setCheckable(true);
    dark->setChecked(true);
    connect(dark, &QAction::toggled, this, &TUKqScan::onActionChangeStyle);
}

QWidget *TUKqScan::buildSettings() {
    m_settingsArea = new QScrollArea(this);
    m_settingsArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_settingsArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    m_settingsArea->setWidgetResizable(true);

    auto *content = new QWidget(m_settingsArea);
    content->setFixedWidth(kSettingsWidth - m_settingsArea->verticalScrollBar()->sizeHint().width() -
                           2 * m_settingsArea->frameWidth());
    auto *box = new QVBoxLayout(content);
    box->setContentsMargins(0, 0, 0, 0);
    auto *grid = new QGridLayout;
    grid->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    grid->setSpacing(10);

    for (SelectionButton b : {SelectionButton::Scanner, SelectionButton::Colour, SelectionButton::Dpi,
                              SelectionButton::Peg, SelectionButton::Field})
        m_selection[b] = new TUMenuButton(content);
    m_boxes[SessionCheckBox::PencilTest] = new QCheckBox(tr("Pencil Test"), content);
    m_boxes[SessionCheckBox::OpticalRegistration] = new QCheckBox(tr("Optical Registration"), content);
    m_boxes[SessionCheckBox::FlipDrawing] = new QCheckBox(tr("Flip Drawing"), content);

    grid->addWidget(m_selection[SelectionButton::Scanner], 0, 0);
    grid->addWidget(m_selection[SelectionButton::Colour], 1, 0);
    grid->addWidget(m_selection[SelectionButton::Dpi], 1, 1);
    grid->addWidget(m_selection[SelectionButton::Peg], 2, 0);
    grid->addWidget(m_selection[SelectionButton::Field], 2, 1);
    grid->addWidget(m_boxes[SessionCheckBox::PencilTest], 3, 0);
    grid->addWidget(m_boxes[SessionCheckBox::OpticalRegistration], 4, 0);
    grid->addWidget(m_boxes[SessionCheckBox::FlipDrawing], 4, 1);
    QCheckBox *optical = m_boxes[SessionCheckBox::OpticalRegistration];
    grid->setColumnMinimumWidth(0, optical->fontMetrics().horizontalAdvance(optical->text()) + 30);
    box->addLayout(grid);

    m_paramDlg = new TUParamDlg(content);
    box->addWidget(m_paramDlg);
    box->addStretch(1);
    m_settingsArea->setWidget(content);
    return m_settingsArea;
}

QWidget *TUKqScan::buildLowerPane() {
    m_lowerFrame = new QFrame(this);
    auto *box = new QVBoxLayout(m_lowerFrame);
    // The frame preview is as wide as the column: no room for side margins.
    box->setContentsMargins(0, kMargin, 0, 0);

    auto *feedRow = new QHBoxLayout;
    m_buttons[SessionButton::Preview] = new QPushButton(tr("Preview"), m_lowerFrame);
    feedRow->addWidget(m_buttons[SessionButton::Preview]);
    m_selection[SelectionButton::Feed] = new TUMenuButton(m_lowerFrame);
    feedRow->addWidget(m_selection[SelectionButton::Feed]);
    box->addLayout(feedRow);

    auto *scanRow = new QHBoxLayout;
    m_buttons[SessionButton::Scan] = new QPushButton(tr("Scan"), m_lowerFrame);
    m_buttons[SessionButton::Stop] = new QPushButton(tr("Stop"), m_lowerFrame);
    m_buttons[SessionButton::Save] = new QPushButton(tr("Save"), m_lowerFrame);
    for (SessionButton b : {SessionButton::Scan, SessionButton::Stop, SessionButton::Save})
        scanRow->addWidget(m_buttons[b]);
    box->addLayout(scanRow);

    box->addWidget(centredLabel(tr("Drawing List"), m_lowerFrame));
    m_list = new QListWidget(m_lowerFrame);
    m_list->setMinimumHeight(60);
    box->addWidget(m_list, 1);
    m_lastScanned = centredLabel(tr("Last Scanned:"), m_lowerFrame);
    box->addWidget(m_lastScanned);
    m_overview = new TUScanImage(2, m_lowerFrame);
    m_overview->setFixedSize(300, 100);
    m_overview->hide();
    box->addWidget(m_overview, 0, Qt::AlignHCenter);
    box->addWidget(centredLabel(tr("Frame Preview"), m_lowerFrame));
    m_framePreview = new TUScanImage(1, m_lowerFrame);
    m_framePreview->setFixedSize(300, 200);
    m_framePreview->setFixedSizeForCopies(300, 200);
    box->addWidget(m_framePreview, 0, Qt::AlignHCenter);
    m_styleLabel = new QLabel(tr("Vectorization Style: "), m_lowerFrame);
    box->addWidget(m_styleLabel);
    return m_lowerFrame;
}

void TUKqScan::connectControls() {
    const std::pair<SelectionButton, void (TUKqScan::*)(int)> menus[] = {
        {SelectionButton::Scanner, &TUKqScan::scannerListSlot},   {SelectionButton::Peg, &TUKqScan::scannerPegSlot},
        {SelectionButton::Field, &TUKqScan::scannerFieldSlot},    {SelectionButton::Dpi, &TUKqScan::scannerResolutionSlot},
        {SelectionButton::Colour, &TUKqScan::scannerColorSlot},   {SelectionButton::Feed, &TUKqScan::peggingSlot},
    };
    for (const auto &[button, slot] : menus) connect(m_selection[button], &TUMenuButton::activated, this, slot);
    connect(m_boxes[SessionCheckBox::PencilTest], &QCheckBox::toggled, this, &TUKqScan::pencilTestSlot);
    connect(m_boxes[SessionCheckBox::OpticalRegistration], &QCheckBox::toggled, this, &TUKqScan::opticalRegSlot);
    connect(m_boxes[SessionCheckBox::FlipDrawing], &QCheckBox::toggled, this, &TUKqScan::flipDrawingSlot);
    connect(m_buttons[SessionButton::Preview], &QPushButton::clicked, this, &TUKqScan::trialSlot);
    connect(m_buttons[SessionButton::Scan], &QPushButton::clicked, this, qOverload<>(&TUKqScan::scanSlot));
    connect(m_buttons[SessionButton::Stop], &QPushButton::clicked, this, &TUKqScan::stopSlot);
    connect(m_buttons[SessionButton::Save], &QPushButton::clicked, this, &TUKqScan::saveSlot);
    connect(m_list, &QListWidget::itemDoubleClicked, this, qOverload<QListWidgetItem *>(&TUKqScan::scanSlot));
    connect(m_list, &QListWidget::itemActivated, this, qOverload<QListWidgetItem *>(&TUKqScan::scanSlot));
}

TUMenuButton *TUKqScan::selectionButton(SelectionButton button) const { return m_selection.at(button); }
QPushButton *TUKqScan::button(SessionButton button) const { return m_buttons.at(button); }
QCheckBox *TUKqScan::checkBox(SessionCheckBox box) const { return m_boxes.at(box); }
QAction *TUKqScan::action(SessionAction action) const { return m_actions.at(action); }
