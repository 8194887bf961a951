#pragma once
// The entries of the selection buttons that the window fills once: "No
// Scanner", depth, peg side, field and resolution. The scanner and feed menus
// are filled by the session as scanners are listed and selected.
class ScanWindow;

void add_fixed_menu_entries(ScanWindow *window);
