#include "scan/twain_device_list.h"

// The list comes from the TwainScan helper; until that helper is built this
// machine has no TWAIN sources, exactly as one without the helper installed.
std::unique_ptr<TwainDeviceList> load_TwainDeviceList() { return std::make_unique<TwainDeviceList>(); }

int32_t count_of_TwainDeviceList(const TwainDeviceList *list) {
    return list ? static_cast<int32_t>(list->entries.size()) : 0;
}

TwainDeviceEntry *entry_of_TwainDeviceList(TwainDeviceList *list, int32_t index) {
    if (!list || index < 0 || index >= count_of_TwainDeviceList(list)) return nullptr;
    return &list->entries[static_cast<size_t>(index)];
}
