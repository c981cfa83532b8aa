#pragma once

#include "component/TarvelVtrOut_InOut.h"

namespace trvtrout::tests {

using ReportOperation = Boolean (TarvelVtrOut_InOut::*)(std::u16string&, std::u16string&, Boolean&);
using CompareOperation = Boolean (TarvelVtrOut_InOut::*)(std::u16string&, std::u16string&, std::u16string&);

// The eight parts by the names of their approved texts and reports, with the operations on them.
struct Operations {
  const char* part;
  const char* desc_name;
  ReportOperation report;
  CompareOperation compare;
};

inline constexpr Operations kOperations[] = {
    {"product", "Product", &TarvelVtrOut_InOut::ASCII_Output_Product, &TarvelVtrOut_InOut::Compare_Product},
    {"table", "Table", &TarvelVtrOut_InOut::ASCII_Output_Table, &TarvelVtrOut_InOut::Compare_Table},
    {"tree", "Tree", &TarvelVtrOut_InOut::ASCII_Output_Tree, &TarvelVtrOut_InOut::Compare_Tree},
    {"field", "Field", &TarvelVtrOut_InOut::ASCII_Output_Field, &TarvelVtrOut_InOut::Compare_Field},
    {"lookup", "Lookup", &TarvelVtrOut_InOut::ASCII_Output_Lookup, &TarvelVtrOut_InOut::Compare_Lookup},
    {"ctrltag", "CtrlTag", &TarvelVtrOut_InOut::ASCII_Output_CtrlTag, &TarvelVtrOut_InOut::Compare_CtrlTag},
    {"lang", "Lang", &TarvelVtrOut_InOut::ASCII_Output_Lang, &TarvelVtrOut_InOut::Compare_Lang},
    {"dsend", "DSend", &TarvelVtrOut_InOut::ASCII_Output_DSend, &TarvelVtrOut_InOut::Compare_DSend},
};

}  // namespace trvtrout::tests
