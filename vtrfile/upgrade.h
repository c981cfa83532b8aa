#pragma once

#include <string_view>

#include "vtrfile/document.h"

namespace trvtrout::vtrfile {

// Brings a schema of the old format into `target`; does nothing for a version other than kOldFormatVersion. What the
// upgrade doesn't carry over stays in `target` as it was.
void UpgradeSchema(std::string_view version, const Slot<SCHEMA_STRUCT_OLD1>& schema_old, Slot<SCHEMA_STRUCT>& target);

// Whether an old schema holds anything that UpgradeSchema doesn't carry over.
bool UpgradeLeavesBehind(const SCHEMA_STRUCT_OLD1& schema_old);

}  // namespace trvtrout::vtrfile
