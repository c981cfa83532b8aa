#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "compare/comparison_counts.h"
#include "component/boolean.h"
#include "services/host_services.h"
#include "vtrfile/part_read.h"
#include "vtrfile/read_error.h"
#include "vtrfile/salvage.h"

namespace trvtrout {

namespace vtrfile {
struct DocumentSlots;  // vtrfile/document.h, for a host that looks into the records
}

// The output utility for VTR files: reads a file into records, keeps them between calls, writes reports on them, and
// writes them anew.
//
// No operation raises: a failure comes back as False, or as an error text where the result is a text, and what had been
// written by then stays. Nothing is cleared between two reads on one object: a section that a file doesn't have keeps
// what an earlier file left. Paths hold backslashes. One thread at a time may use an object.
class TarvelVtrOut_InOut {
 public:
  // Nothing is touched at creation; an object that has read nothing reports empty lists.
  explicit TarvelVtrOut_InOut(const HostServices& services);
  ~TarvelVtrOut_InOut();
  TarvelVtrOut_InOut(const TarvelVtrOut_InOut&) = delete;
  TarvelVtrOut_InOut& operator=(const TarvelVtrOut_InOut&) = delete;

  // Reads binary VTR file into the structures. Returns True on success.
  // The copies for a comparison go to the primary document (`IsSecondary` False) or the secondary one. For a damaged
  // file and one that can't be opened `StructureList` gets the list of what was read and of what was not, and what was
  // read stays; it isn't touched otherwise. A file that doesn't exist is created empty and refused. An unsupported
  // version is told to the user.
  Boolean ReadVTR(std::u16string& Fname, std::u16string& StructureList, Boolean& IsSecondary);

  // Each writes one detail report on the document last read, as comma-separated text in the code page. `Fname` names
  // the report and stands in its first row; `ASCIIFname` gets the report's path, also on failure. `IsTemp` asks for the
  // name without the moment. About a file that stands there the user is asked: Yes replaces it, No asks for another
  // path, Cancel leaves it untouched and the result is False. When the file is held by another program,
  // ASCII_Output_Product tells the user.
  Boolean ASCII_Output_Product(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp);
  Boolean ASCII_Output_Table(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp);
  Boolean ASCII_Output_Tree(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp);
  Boolean ASCII_Output_Field(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp);
  Boolean ASCII_Output_Lookup(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp);
  Boolean ASCII_Output_CtrlTag(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp);
  Boolean ASCII_Output_Lang(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp);
  Boolean ASCII_Output_DSend(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp);

  // The path for a workbook ("Statistics", "Compared"), a rewritten file ("Recovered") or a log ("Log") beside `Fname`;
  // empty for any other `DescName` and on failure. `VTRFname` gets the base name of `Fname`, if it
  // has one. Asks about an existing
  // file as the reports do; after Cancel the result is the path of that file, which nobody has touched.
  std::u16string GetOutputFileName(const std::u16string& Fname, const std::u16string& DescName,
                                   std::u16string& VTRFname);

  // Each adds a sheet named `StrSheetName` to the workbook `XLFname`, in front of its active sheet, and moves the
  // report `ASCIIFname` into it; a detail report the first, a comparison the second. The workbook must exist. The names
  // "Product", "Tables", "Fields", "Tree", "Lookups", "Control Tags", "Languages" and "Data Send" give the sheet the
  // formats of that report. On failure the workbook is as it was. The report stays.
  Boolean XL_Output_Statistics(const std::u16string& XLFname, const std::u16string& ASCIIFname,
                               const std::u16string& StrSheetName);
  // With `Color` True the labels of changed, deleted and added rows get their colours; how far the rows reach is asked
  // of `objPrim` and `objSec`, whose document last read is the primary and the secondary one. Both can be null if not.
  Boolean XL_Output_Compared(const std::u16string& XLFname, const std::u16string& ASCIIFname,
                             const std::u16string& StrSheetName, TarvelVtrOut_InOut* objPrim,
                             TarvelVtrOut_InOut* objSec, Boolean Color);

  // Removes a report file. False when it can't be removed; the user is told of a missing file.
  Boolean Delete_ASCII(const std::u16string& ASCIIFname);

  // What the document last read holds. Each list: its stored numbers, and in `size` the index of its last used slot,
  // recounted. The result is "OK", or "Err..." when the list doesn't hold together; the stored numbers are set even
  // then.
  std::u16string GetProdInfo(std::u16string& Code, std::u16string& Description, std::u16string& Serial,
                             std::u16string& Version, std::u16string& Database);
  std::u16string GetInclInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max, std::int32_t& size);
  std::u16string GetMdlInfo(std::int32_t& Count, std::int32_t& size);
  std::u16string GetTreInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max, std::int32_t& size);
  std::u16string GetTableInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max, std::int32_t& size);
  // The fields of all tables.
  std::u16string GetFieldsInfo(std::int32_t& size);
  std::u16string GetLookupInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max, std::int32_t& size);
  std::u16string GetTagInfo(std::int32_t& Count, std::int32_t& size);
  std::u16string GetLanInfo(std::int32_t& Count, std::int32_t& size);
  // `Count` definitions with `size` nodes in all, used or not.
  std::u16string GetDsmInfo(std::int32_t& Count, std::u16string& file, std::u16string& Version, std::int32_t& size);
  // "ErrHedInfo" when the header's text isn't a date; `Modified` stays as it was then. `size` is 0.
  std::u16string GetHedInfo(Date& Modified, std::int32_t& size);
  std::u16string GetDSNInfo(std::int32_t& Count, std::int32_t& size);
  std::u16string GetExtInfo(std::int32_t& Count, std::int32_t& size);
  std::u16string GetFmsInfo(std::int32_t& Count, std::int32_t& size);
  std::u16string GetIncNewInfo(std::int32_t& Count, std::int32_t& size);
  std::u16string GetRelInfo(std::int32_t& Count, std::int32_t& size);
  std::u16string GetResiTblInfo(std::int32_t& Count, std::int32_t& size);
  std::u16string GetHidLookInfo(std::int32_t& Count, std::int32_t& size);
  std::u16string GetHidTableInfo(std::int32_t& Count, std::int32_t& Current, std::int32_t& Max, std::int32_t& size);
  std::u16string GetHidFieldsInfo(std::int32_t& size);

  // Writes the document last read to the file `RecoveredFname`, in the current format and with all fourteen sections,
  // so that ReadVTR reads it to its end. A list that doesn't hold together is emptied first, in the document too. The
  // header says when and under which name it was written. `msgRecover` gets the lists of what was recovered and of what
  // was lost, behind what it held. The file is created or written over in place, not emptied: what is longer keeps its
  // tail. On failure the user is told (not when no file is named), what was written by then stays, and so does
  // `msgRecover`.
  Boolean RecoverVTR(std::u16string& RecoveredFname, std::u16string& msgRecover);

  // Each compares one part of the two documents read and writes one report under the temporary name of `PrimFname`,
  // with the rows labelled that changed, were deleted or added. `ASCIIFname` gets the report's path, also on failure.
  // The names serve the report's name and head alone. The user is asked about a file that stands where `SecFname` would
  // put the report, which is never written, then about one that stands where it goes; Cancel leaves that one untouched
  // and the result is False. When it is held by another program the user is told.
  Boolean Compare_Product(std::u16string& PrimFname, std::u16string& SecFname, std::u16string& ASCIIFname);
  Boolean Compare_Tree(std::u16string& PrimFname, std::u16string& SecFname, std::u16string& ASCIIFname);
  Boolean Compare_Table(std::u16string& PrimFname, std::u16string& SecFname, std::u16string& ASCIIFname);
  Boolean Compare_Field(std::u16string& PrimFname, std::u16string& SecFname, std::u16string& ASCIIFname);
  Boolean Compare_Lookup(std::u16string& PrimFname, std::u16string& SecFname, std::u16string& ASCIIFname);
  Boolean Compare_CtrlTag(std::u16string& PrimFname, std::u16string& SecFname, std::u16string& ASCIIFname);
  Boolean Compare_Lang(std::u16string& PrimFname, std::u16string& SecFname, std::u16string& ASCIIFname);
  Boolean Compare_DSend(std::u16string& PrimFname, std::u16string& SecFname, std::u16string& ASCIIFname);

  // For a host in C++, beside the interface: the document last read, where and why its read broke off, and why the last
  // operation that failed did so (UTF-8, for people). The references hold until the next operation.
  const vtrfile::DocumentSlots& CurrentSlots() const noexcept;
  const std::optional<vtrfile::ReadError>& LastDamage() const noexcept;
  const std::string& LastFailure() const noexcept;
  // The number of the service error by which it did so; kNone when it was none.
  ErrorNumber LastErrorNumber() const noexcept;
  // What the last ReadVTR met in its file: the parts, whole or not, and the bytes between them of which nothing can be
  // told. There may be such bytes even when the result was True.
  const vtrfile::FileRead& LastRead() const noexcept;
  // Reads on behind the damage of a file on which ReadVTR has failed, or passed over bytes: the document becomes what
  // can be saved of the whole file, its sections that weren't found empty, and so do the copies for a comparison, those
  // of the primary (`IsSecondary` False) or the secondary document. Blocks that can't be read are tried twice and then
  // passed over. False when nothing can be told of the file, and then the document is as it was. LastDamage stays that
  // of ReadVTR; LastRead is that of this operation. Nothing is written, and nobody is asked.
  Boolean SalvageVTR(std::u16string& Fname, Boolean& IsSecondary);
  // What the last SalvageVTR found, if it was the last operation that read.
  const std::optional<vtrfile::Salvaged>& LastSalvage() const noexcept;
  // Detail reports and comparisons go into this folder from now on, under the names that they would have beside the
  // document; empty for beside it.
  void SetReportFolder(std::u16string folder);
  // The rows of the last comparison, as far as it came.
  const ComparisonCounts& LastCounts() const noexcept;
  // The keys that occur more than once in the part that was last compared, of the primary or the `secondary` document.
  std::vector<std::u16string> RepeatedKeys(bool secondary) const;

 private:
  struct Store;
  std::unique_ptr<Store> store_;
};

}  // namespace trvtrout
