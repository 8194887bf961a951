#include "suite/db/tudbaccess.h"

#include "suite/base/assertion.h"

int TUDbAccess::needs_vectorization_LMV_element_data(const LMV_element_data *element) {
    LMV_ASSERT_RET(element, LMV_VECTORIZE_NONE);
    return element->needsVectorization;
}

bool TUDbAccess::uses_pixmap_LMV_element_data(const LMV_element_data *element) {
    LMV_ASSERT_RET(element, false);
    return element->usesPixmap;
}

int TUDbAccess::pf_of_LMV_element_data(const LMV_element_data *element) {
    LMV_ASSERT_RET(element, 24);
    return element->pf;
}

qint64 TUDbAccess::element_id_of_LMV_element_data(const LMV_element_data *element) {
    LMV_ASSERT_RET(element, 0);
    return element->id;
}

float TUDbAccess::field_chart_of_LMV_element_data(const LMV_element_data *element) {
    LMV_ASSERT_RET(element, 0.0f);
    return float(element->fieldChart);
}

LMV_element_scan_type TUDbAccess::scan_type_of_LMV_element_data(const LMV_element_data *element) {
    LMV_ASSERT_RET(element, LMV_SCAN_NONE);
    return LMV_element_scan_type(element->scanType);
}
