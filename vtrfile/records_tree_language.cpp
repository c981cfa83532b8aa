#include "vtrfile/record_walks.h"
#include "vtrfile/records/language.h"
#include "vtrfile/records/module.h"
#include "vtrfile/records/tree.h"

VTR_INSTANTIATE(TREE_HIERARCHY_STRUCT);
VTR_INSTANTIATE(LANGUAGE_STRUCT);
VTR_INSTANTIATE(MODULE_STRUCT);
VTR_INSTANTIATE(CONTROLTAG_STRUCT);
