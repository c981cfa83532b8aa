#include "vtrfile/record_walks.h"
#include "vtrfile/records/hidden.h"
#include "vtrfile/records/schema.h"

VTR_INSTANTIATE(SCHEMA_STRUCT);
VTR_INSTANTIATE(SCHEMA_STRUCT_OLD1);
VTR_INSTANTIATE(HIDETABLES_STRUCT);
