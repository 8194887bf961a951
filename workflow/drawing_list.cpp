#include "workflow/drawing_list.h"

#include <QCoreApplication>

#include <algorithm>

#include "suite/base/assertion.h"
#include "suite/db/tudbaccess.h"
#include "workflow/config.h"
#include "workflow/dbinfo.h"
#include "workflow/scan_window.h"

namespace {

// The rows live twice, in the items and in the view; a difference means some
// code wrote to the view behind the list's back.
bool one_to_one(const DrawingList *list) {
    LMV_ASSERT_RET(list->view, false);
    LMV_ASSERT_RET(static_cast<int>(list->items.size()) == list->view->rowCount(), false);
    return true;
}

bool valid_row(const DrawingList *list, int32_t row) {
    return row >= 0 && row < static_cast<int32_t>(list->items.size());
}

// Replaces the session's list by an empty one on `view`, which the old list
// clears as it goes.
DrawingList *fresh_list(ScanConfig *config, DrawingListView *view) {
    set_drawing_list_of_ScanConfig(config, nullptr);
    auto *list = new DrawingList(view);
    view->clear();
    set_drawing_list_of_ScanConfig(config, list);  // the session owns it from here
    return list;
}

void add_all(DrawingList *list, const QStringList &names) {
    for (const QString &name : names) add_of_DrawingList(list, name);
    if (count_of_DrawingList(list) > 0) list->view->setCurrentRow(0);
}

}  // namespace

DrawingList::DrawingList(DrawingListView *view) : view(view) {}

DrawingList::~DrawingList() {
    if (view) view->clear();
}

void add_of_DrawingList(DrawingList *list, const QString &name) {
    LMV_ASSERT_VOID(list && list->view);
    LMV_ASSERT_VOID(!name.isEmpty());
    list->items.push_back(DrawingListItem{ROW_NONE, name, name});
    list->view->appendRow(name);
    one_to_one(list);
}

int32_t count_of_DrawingList(const DrawingList *list) {
    if (!list) return 0;
    one_to_one(list);
    return static_cast<int32_t>(list->items.size());
}

QString name_of_DrawingList(const DrawingList *list, int32_t row) {
    LMV_ASSERT_RET(list, QString());
    LMV_ASSERT_RET(valid_row(list, row), QString());
    return list->items[row].name;
}

int32_t state_of_DrawingList(const DrawingList *list, int32_t row) {
    LMV_ASSERT_RET(list, ROW_NONE);
    LMV_ASSERT_RET(valid_row(list, row), ROW_NONE);
    return list->items[row].state;
}

QString text_of_DrawingList(const DrawingList *list, int32_t row) {
    LMV_ASSERT_RET(list, QString());
    LMV_ASSERT_RET(valid_row(list, row), QString());
    return list->items[row].text;
}

int32_t current_row_of_DrawingList(const DrawingList *list) {
    LMV_ASSERT_RET(list && list->view, -1);
    one_to_one(list);
    const int32_t row = list->view->currentRow();
    LMV_ASSERT_RET(row >= 0, -1);
    return row;
}

void mark_of_DrawingList(DrawingList *list, int32_t row, int32_t state, const QString &details) {
    LMV_ASSERT_VOID(list && list->view);
    LMV_ASSERT_VOID(valid_row(list, row));
    DrawingListItem &item = list->items[row];
    item.state = state;

    QString text = item.name;
    switch (state) {
    case ROW_NONE: break;
    case ROW_NOT_SCANNED: text += QCoreApplication::translate("kqScan", " (Not Scanned)"); break;
    case ROW_SCANNED: text += QCoreApplication::translate("kqScan", " (Scanned)"); break;
    default: LMV_ASSERT_VOID(!"state of a drawing list row");
    }
    if (state != ROW_NONE && !details.isEmpty()) text += QCoreApplication::translate("kqScan", " ") + details;

    item.text = text;
    // The view's current row is the one being marked whenever the scan loop
    // marks; writing the current item keeps the view's own notion of it.
    list->view->setCurrentText(text);
    list->view->setCurrentRow(row);
    one_to_one(list);
}

void next_of_DrawingList(DrawingList *list) {
    LMV_ASSERT_VOID(list && list->view);
    if (!one_to_one(list)) return;
    const int32_t row = list->view->currentRow();
    if (row < 0) return;
    list->view->clearSelection();
    const int32_t next = row + 1 < count_of_DrawingList(list) ? row + 1 : 0;
    list->view->setCurrentRow(next);
    list->view->scrollToCurrent();
}

namespace {

// What both kinds of list do after the names are in: mode, pixel shape,
// state, title and controls.
void finish_list(ScanConfig *config, bool database, int32_t pixelShape) {
    set_database_of_ScanConfig(config, database);
    set_pixel_shape_of_ScanConfig(config, pixelShape);
    SetInterfaceState(config, INTERFACE_IDLE);
    main_interface_of_ScanConfig(config)->setWindowTitle(list_title_of_ScanConfig(config));
    refresh_of_ScanConfig(config);
}

}  // namespace

void build_manual_list(ScanConfig *config, const QStringList &names) {
    LMV_ASSERT_VOID(config);
    ScanWindow *window = main_interface_of_ScanConfig(config);
    LMV_ASSERT_VOID(window && window->drawingListView());

    DrawingList *list = fresh_list(config, window->drawingListView());
    set_path_of_ScanConfig(config, window->manualListPath());
    set_prefix_of_ScanConfig(config, window->manualListPrefix());
    add_all(list, names);
    finish_list(config, false, 1);
}

void build_database_list(ScanConfig *config, const QStringList &names) {
    LMV_ASSERT_VOID(config);
    ScanWindow *window = main_interface_of_ScanConfig(config);
    LMV_ASSERT_VOID(window && window->drawingListView());
    TUDbAccess *db = window->database();
    LMV_ASSERT_VOID(db);

    add_all(fresh_list(config, window->drawingListView()), names);
    const dba_job_struct *job = db->openJob();
    LMV_ASSERT_VOID(job);
    finish_list(config, true, job->pixelShape);
}

void reverse_list(ScanConfig *config) {
    LMV_ASSERT_VOID(config);
    DrawingList *old = drawing_list_of_ScanConfig(config);
    LMV_ASSERT_VOID(old && old->view);

    QStringList names;
    names.reserve(static_cast<qsizetype>(old->items.size()));
    for (const DrawingListItem &item : old->items) names.append(item.name);
    std::reverse(names.begin(), names.end());

    // Marks are not carried over: a reversed list starts afresh at the top.
    DrawingListView *view = old->view;
    add_all(fresh_list(config, view), names);
}

QString list_title_of_ScanConfig(const ScanConfig *config) {
    LMV_ASSERT_RET(config, QString());
    QString title = QCoreApplication::translate("kqScan", "Scan: ");
    if (!database_of_ScanConfig(config)) return title + QCoreApplication::translate("kqScan", "Manual List");
    const TUDbAccess *db = database_of_DatabaseBinding(binding_of_ScanConfig(config));
    LMV_ASSERT_RET(db, title);
    const QString arrow = QStringLiteral(" -> ");
    return title + db->envName() + arrow + db->jobName() + arrow + QCoreApplication::translate("kqScan", "scene ") +
           db->sceneName() + arrow + QCoreApplication::translate("kqScan", "element ") +
           name_of_DatabaseBinding(binding_of_ScanConfig(config));
}
