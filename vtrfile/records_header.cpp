#include "vtrfile/record_walks.h"
#include "vtrfile/records/header.h"

VTR_INSTANTIATE(HEADER_STRUCT);
VTR_INSTANTIATE(SECTION_TAG_STRUCT);
