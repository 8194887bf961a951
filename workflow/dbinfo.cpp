#include "workflow/dbinfo.h"

#include "scan/scanner_list.h"
#include "suite/base/assertion.h"
#include "workflow/config.h"
#include "workflow/scan_procs.h"

DatabaseBinding *DatabaseBindingCreate(TUDbAccess *database) {
    auto *binding = new DatabaseBinding;
    binding->database = database;
    return binding;
}

void DatabaseBindingDestroy(DatabaseBinding *binding) { delete binding; }

QString name_of_DatabaseBinding(const DatabaseBinding *binding) {
    LMV_ASSERT_RET(binding, QString());
    LMV_ASSERT_RET(binding->open, QString());
    return binding->element_name;
}

QString path_of_DatabaseBinding(const DatabaseBinding *binding) {
    LMV_ASSERT_RET(binding, QString());
    LMV_ASSERT_RET(binding->open, QString());
    return binding->element_path;
}

TUDbAccess *database_of_DatabaseBinding(const DatabaseBinding *binding) {
    LMV_ASSERT_RET(binding, nullptr);
    return binding->database;
}

int32_t scan_type_of_DatabaseBinding(const DatabaseBinding *binding) {
    LMV_ASSERT_RET(binding, SCANTYPE_NONE);
    return binding->scan_type;
}

bool needs_vectorization_of_DatabaseBinding(const DatabaseBinding *binding) {
    LMV_ASSERT_RET(binding, false);
    return binding->needs_vectorization;
}

int32_t pf_of_DatabaseBinding(const DatabaseBinding *binding) {
    LMV_ASSERT_RET(binding, 24);
    return binding->pf;
}

float field_chart_of_DatabaseBinding(const DatabaseBinding *binding) {
    LMV_ASSERT_RET(binding, 0.0f);
    return binding->field_chart;
}

bool binding_fits_depth(const DatabaseBinding *binding, int32_t depth) {
    LMV_ASSERT_RET(binding, false);
    switch (binding->scan_type) {
    case SCANTYPE_COLOUR: return depth == DEPTH_COLOUR;
    case SCANTYPE_GREY: return depth == DEPTH_GREY;
    case SCANTYPE_BW: return depth == DEPTH_BW;
    case SCANTYPE_NEVER: return false;
    default: LMV_ASSERT_RET(!"scan type of the binding", false);
    }
}

int32_t UpdateDrawingDatabase(ScanConfig *config) {
    LMV_ASSERT_RET(config != nullptr, SCAN_INTERNAL);
    const DatabaseBinding *binding = config->binding;
    // Only a binding opened on a production database gets this far; the cel
    // and queue calls come with that database.
    LMV_ASSERT_RET(binding && binding->open && binding->database, SCAN_BUSY);
    return SCAN_BUSY;
}
