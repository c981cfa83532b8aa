#pragma once

#include <span>

#include "compare/comparisons.h"
#include "component/TarvelVtrOut_InOut.h"
#include "reports/detail_reports.h"
#include "vtrfile/lists.h"
#include "workbook/part_sheet.h"

namespace trvtrout {

// A part of a document of which there are a detail report and a comparison.
struct Part {
  const char* name;  // on the command line and in JSON
  const DetailReport* detail_report;
  const Comparison* comparison;
  Boolean (TarvelVtrOut_InOut::*report)(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp);
  Boolean (TarvelVtrOut_InOut::*compare)(std::u16string& PrimFname, std::u16string& SecFname,
                                         std::u16string& ASCIIFname);
  PartSheet sheet;  // in a workbook
  // The lists whose items take a row each in a comparison.
  std::span<const vtrfile::ListId> item_lists;
};

// All of them, in the order in which they are written.
std::span<const Part> document_parts();

}  // namespace trvtrout
