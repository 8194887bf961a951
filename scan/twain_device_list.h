#pragma once
// The TWAIN sources of this machine, as the external scanning helper lists
// them, numbered from 0 in its order.
#include <QString>

#include <cstdint>
#include <memory>
#include <vector>

struct TwainDeviceEntry {
    int32_t index = 0;
    QString name;
    QString description;  // null until asked
};

struct TwainDeviceList {
    std::vector<TwainDeviceEntry> entries;
};

// The sources the helper lists; empty when there is no helper program.
std::unique_ptr<TwainDeviceList> load_TwainDeviceList();
int32_t count_of_TwainDeviceList(const TwainDeviceList *list);  // 0 for null
TwainDeviceEntry *entry_of_TwainDeviceList(TwainDeviceList *list, int32_t index);  // null for a bad index
