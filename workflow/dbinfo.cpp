#include "workflow/dbinfo.h"

#include <QFileInfo>

#include "scan/scanner_list.h"
#include "suite/base/assertion.h"
#include "suite/base/msg_scope.h"
#include "suite/base/osw_util.h"
#include "suite/db/dba_path.h"
#include "suite/db/tudbaccess.h"
#include "workflow/config.h"
#include "workflow/drawing_list.h"
#include "workflow/scan_procs.h"
#include "workflow/scan_window.h"

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

bool uses_pixmap_of_DatabaseBinding(const DatabaseBinding *binding) {
    LMV_ASSERT_RET(binding, false);
    return binding->uses_pixmap;
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

QString element_path_of_database(TUDbAccess *database, qint64 elementId) {
    LMV_ASSERT_RET(database, QString());
    const dba_scene_struct *scene = database->openScene();
    LMV_ASSERT_RET(scene, QString());
    return oswRemapPath::RemapPath2(DBA_Path::getScenePath(scene->path)) + QLatin1Char('/') +
           database->DBA_elementPathFromID(elementId);
}

bool bind_element_of_ScanConfig(ScanConfig *config, qint64 elementId, const QStringList &names) {
    LMV_ASSERT_RET(config && config->main_interface, false);
    TUDbAccess *db = config->main_interface->database();
    LMV_ASSERT_RET(db, false);
    const std::optional<LMV_element_data> element = db->DBA_elementFromID(elementId);
    LMV_ASSERT_RET(element.has_value(), false);

    auto *binding = DatabaseBindingCreate(db);
    set_binding_of_ScanConfig(config, binding);
    binding->element_name = db->DBA_elementNameFromID(elementId);
    binding->element_path = element_path_of_database(db, elementId);
    binding->element = *element;
    binding->pf = TUDbAccess::pf_of_LMV_element_data(&binding->element);
    binding->needs_vectorization = TUDbAccess::needs_vectorization_LMV_element_data(&binding->element) != 0;
    binding->uses_pixmap = TUDbAccess::uses_pixmap_LMV_element_data(&binding->element);
    binding->scan_type = TUDbAccess::scan_type_of_LMV_element_data(&binding->element);
    binding->field_chart = TUDbAccess::field_chart_of_LMV_element_data(&binding->element);

    if (!QFileInfo(binding->element_path).isDir()) {
        MSG_Scope(MSG_Text("kqScan", "The directory \n %1 \n was not found\n\n You may need to notify a System "
                                     "Administrator\n to correct this problem.")
                      .arg(binding->element_path),
                  MSG_ACTION_ERROR);
        return false;
    }
    binding->open = true;
    build_database_list(config, names);
    return true;
}
