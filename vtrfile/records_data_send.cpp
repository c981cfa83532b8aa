#include "vtrfile/record_walks.h"
#include "vtrfile/records/data_send.h"

VTR_INSTANTIATE(DATASEND_STRUCT);
