#pragma once
// The drawings still to do in this press of the session, one row each, as the
// window's list shows them. The current row is the view's current row.
#include <QString>
#include <QStringList>

#include <cstdint>
#include <vector>

class DrawingListView;
struct ScanConfig;

enum DrawingRowState : int32_t { ROW_NONE = 0, ROW_NOT_SCANNED = 1, ROW_SCANNED = 2 };

struct DrawingListItem {
    int32_t state = ROW_NONE;
    QString name;  // handed to the Drawing as it stands
    QString text;  // what the row shows
};

struct DrawingList {
    explicit DrawingList(DrawingListView *view);
    ~DrawingList();  // clears the view
    DrawingList(const DrawingList &) = delete;
    DrawingList &operator=(const DrawingList &) = delete;

    std::vector<DrawingListItem> items;
    DrawingListView *view;  // not owned
};

// Appends a row with state none; the name must not be empty.
void add_of_DrawingList(DrawingList *list, const QString &name);
int32_t count_of_DrawingList(const DrawingList *list);  // 0 for a null list
QString name_of_DrawingList(const DrawingList *list, int32_t row);
int32_t state_of_DrawingList(const DrawingList *list, int32_t row);
QString text_of_DrawingList(const DrawingList *list, int32_t row);
int32_t current_row_of_DrawingList(const DrawingList *list);  // -1 with an assertion
// Sets state and text (name, the state's words, the details) and makes `row`
// current.
void mark_of_DrawingList(DrawingList *list, int32_t row, int32_t state, const QString &details);
// Moves to the next row, wrapping to the first after the last.
void next_of_DrawingList(DrawingList *list);

// Building a list replaces the session's list.
void build_manual_list(ScanConfig *config, const QStringList &names);
// The drawings chosen of the bound element, in the selector's order; the
// pixel shape comes from the open job.
void build_database_list(ScanConfig *config, const QStringList &names);
void reverse_list(ScanConfig *config);
// The title after a list was built: "Scan: Manual List", or in database mode
// "Scan: ENV -> JOB -> scene SCENE -> element ELEMENT".
QString list_title_of_ScanConfig(const ScanConfig *config);
