#include "component/store.h"

// The operations that compare the two documents read.
namespace trvtrout {

Boolean TarvelVtrOut_InOut::Store::compare(const Comparison& comparison, const std::u16string& primary_fname,
                                           const std::u16string& secondary_fname, std::u16string& report_path) {
  last_comparison = &comparison;
  return write_file(report_path, true, [&](ReportFile& file) {
    const ComparedDocuments documents{primary, secondary, primary_fname, secondary_fname};
    return write_comparison(services, comparison, documents, file, counts);
  });
}

Boolean TarvelVtrOut_InOut::Compare_Product(std::u16string& PrimFname, std::u16string& SecFname,
                                            std::u16string& ASCIIFname) {
  return store_->compare(kProductComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_Tree(std::u16string& PrimFname, std::u16string& SecFname,
                                         std::u16string& ASCIIFname) {
  return store_->compare(kTreeComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_Table(std::u16string& PrimFname, std::u16string& SecFname,
                                          std::u16string& ASCIIFname) {
  return store_->compare(kTableComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_Field(std::u16string& PrimFname, std::u16string& SecFname,
                                          std::u16string& ASCIIFname) {
  return store_->compare(kFieldComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_Lookup(std::u16string& PrimFname, std::u16string& SecFname,
                                           std::u16string& ASCIIFname) {
  return store_->compare(kLookupComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_CtrlTag(std::u16string& PrimFname, std::u16string& SecFname,
                                            std::u16string& ASCIIFname) {
  return store_->compare(kControlTagComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_Lang(std::u16string& PrimFname, std::u16string& SecFname,
                                         std::u16string& ASCIIFname) {
  return store_->compare(kLanguageComparison, PrimFname, SecFname, ASCIIFname);
}
Boolean TarvelVtrOut_InOut::Compare_DSend(std::u16string& PrimFname, std::u16string& SecFname,
                                          std::u16string& ASCIIFname) {
  return store_->compare(kDataSendComparison, PrimFname, SecFname, ASCIIFname);
}

std::vector<std::u16string> TarvelVtrOut_InOut::RepeatedKeys(bool secondary) const {
  std::vector<std::u16string> keys;
  if (!store_->last_comparison) return keys;
  for (const std::string& key :
       repeated_keys(*store_->last_comparison, secondary ? store_->secondary : store_->primary)) {
    keys.push_back(store_->services.locale.Decode(key));
  }
  return keys;
}

}  // namespace trvtrout
