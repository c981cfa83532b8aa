#include "compare/comparisons.h"
#include "component/TarvelVtrOut_InOut.h"
#include "services/guard.h"

// The operations that compare the two documents read.
namespace trvtrout {

Boolean TarvelVtrOut_InOut::compare(const Comparison& comparison, const std::u16string& primary_fname,
                                    const std::u16string& secondary_fname, std::u16string& report_path) {
  last_comparison_ = &comparison;
  return guarded(
      [&] {
        const ComparedDocuments documents{primary_, secondary_, primary_fname, secondary_fname};
        const bool written = write_comparison(services_, comparison, documents, report_path, counts_);
        return written ? True : fail({.what = "the file that stands there was left as it is"});
      },
      [&](const Failure& failure) {
        if (failure.number == ErrorNumber::kFileHeld) warn_of_file_in_use(report_path);
        return fail(failure);
      });
}

Boolean TarvelVtrOut_InOut::Compare_Product(std::u16string& PrimFname, std::u16string& SecFname,
                                            std::u16string& ASCIIFname) {
  return compare(kProductComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_Tree(std::u16string& PrimFname, std::u16string& SecFname,
                                         std::u16string& ASCIIFname) {
  return compare(kTreeComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_Table(std::u16string& PrimFname, std::u16string& SecFname,
                                          std::u16string& ASCIIFname) {
  return compare(kTableComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_Field(std::u16string& PrimFname, std::u16string& SecFname,
                                          std::u16string& ASCIIFname) {
  return compare(kFieldComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_Lookup(std::u16string& PrimFname, std::u16string& SecFname,
                                           std::u16string& ASCIIFname) {
  return compare(kLookupComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_CtrlTag(std::u16string& PrimFname, std::u16string& SecFname,
                                            std::u16string& ASCIIFname) {
  return compare(kControlTagComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_Lang(std::u16string& PrimFname, std::u16string& SecFname,
                                         std::u16string& ASCIIFname) {
  return compare(kLanguageComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_DSend(std::u16string& PrimFname, std::u16string& SecFname,
                                          std::u16string& ASCIIFname) {
  return compare(kDataSendComparison, PrimFname, SecFname, ASCIIFname);
}

std::vector<std::u16string> TarvelVtrOut_InOut::RepeatedKeys(bool secondary) const {
  std::vector<std::u16string> keys;
  if (!last_comparison_) return keys;
  for (const std::string& key : repeated_keys(*last_comparison_, secondary ? secondary_ : primary_)) {
    keys.push_back(services_.locale.Decode(key));
  }
  return keys;
}

}  // namespace trvtrout
