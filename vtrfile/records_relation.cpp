#include "vtrfile/record_walks.h"
#include "vtrfile/records/relation.h"

VTR_INSTANTIATE(RELATION_STRUCT);
