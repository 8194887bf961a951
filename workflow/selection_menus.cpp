#include "workflow/selection_menus.h"

#include <QCoreApplication>

#include "workflow/config.h"
#include "workflow/scan_window.h"

namespace {
struct Entry {
    const char *text;
    int id;
};

void add(ScanWindow *w, SelectionButton button, std::initializer_list<Entry> entries) {
    for (const Entry &e : entries) w->addEntry(button, QCoreApplication::translate("kqScan", e.text), e.id);
}
}  // namespace

void add_fixed_menu_entries(ScanWindow *w) {
    add(w, SelectionButton::Scanner, {{"No Scanner", kNoScannerId}});
    add(w, SelectionButton::Colour, {{"&Black && White", 0}, {"&Grey", 1}, {"&Colour", 2}});
    add(w, SelectionButton::Peg, {{"&Bottom Peg", 4}, {"&Top Peg", 2}, {"&Left Peg", 1}, {"&Right Peg", 3}});
    add(w, SelectionButton::Field, {{"1&2 Field", 0}, {"1&6 Field", 1}});
    add(w, SelectionButton::Dpi,
        {{"&72 dpi", 0}, {"&100 dpi", 1}, {"1&50 dpi", 2}, {"&200 dpi", 3}, {"24&0 dpi", 4}, {"&300 dpi", 5},
         {"&400 dpi", 6}, {"&600 dpi", 7}});
}
