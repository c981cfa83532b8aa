#include "component/TarvelVtrOut_InOut.h"

#include "reports/detail_reports.h"
#include "reports/naming.h"
#include "services/guard.h"
#include "vtrfile/reader.h"

namespace trvtrout {
namespace {

// The scratch record for a schema of the old format, one for each apartment.
thread_local vtrfile::Slot<vtrfile::SCHEMA_STRUCT_OLD1> SchemaOld;

// The status lists are plain ASCII.
std::u16string widen(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

}  // namespace

TarvelVtrOut_InOut::TarvelVtrOut_InOut(const HostServices& services) : services_(services) {}

Boolean TarvelVtrOut_InOut::fail(const Failure& failure) {
  last_failure_ = failure.what;
  return False;
}

void TarvelVtrOut_InOut::warn(const std::u16string& prompt, const std::u16string& title) {
  // A warning stands on failure paths too, where a box that can't be shown must not raise.
  guarded([&] { return services_.message_box.Show(prompt, MessageButtons::kOk, title); },
          [](const Failure&) { return MessageAnswer::kOk; });
}

void TarvelVtrOut_InOut::warn_of_file_in_use(const std::u16string& path) {
  warn(u"Can not create file: " + path + u"\r\nFile is in use. Please close file and try again.");
}

std::shared_ptr<const vtrfile::Image> TarvelVtrOut_InOut::load(const std::u16string& path) {
  const auto file = services_.files.OpenBinary(path);
  services_.message_loop.DoEvents();
  auto image = std::make_shared<vtrfile::Image>(file->Size());
  image->shorten(file->Read(image->writable()));
  file->Close();
  return image;
}

Boolean TarvelVtrOut_InOut::ReadVTR(std::u16string& Fname, std::u16string& StructureList, Boolean& IsSecondary) {
  damage_.reset();
  last_read_ = {};
  if (Fname.empty()) return fail({.what = "no file was named"});
  vtrfile::DocumentReader reader(current_, IsSecondary ? secondary_ : primary_, SchemaOld);
  const Boolean result = guarded(
      [&] {
        const auto image = load(Fname);
        try {
          if (reader.read(image)) return True;
        } catch (const vtrfile::ReadError& error) {
          damage_ = error;
          throw;
        }
        const std::u16string version = services_.locale.Decode(current_.Header->Version.bytes());
        warn(u"Cannot open the VTR file. VTR Output does not support strcture version: " + version +
             u"\r\nPlease send the file to Tarvel Software.");
        return fail({.what = "the format version is not supported"});
      },
      [&](const Failure& failure) {
        StructureList = widen(reader.structure_list());
        return fail(failure);
      });
  last_read_ = reader.take_account();
  return result;
}

Boolean TarvelVtrOut_InOut::write_report(const DetailReport& report, const std::u16string& fname,
                                         std::u16string& report_path, Boolean is_temp, bool tells_user) {
  return guarded(
      [&] {
        const bool written = write_detail_report(services_, current_, report, fname, bool(is_temp), report_path);
        return written ? True : fail({.what = "the file that stands there was left as it is"});
      },
      [&](const Failure& failure) {
        if (tells_user && failure.number == ErrorNumber::kFileHeld) warn_of_file_in_use(report_path);
        return fail(failure);
      });
}

Boolean TarvelVtrOut_InOut::ASCII_Output_Product(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return write_report(kProductReport, Fname, ASCIIFname, IsTemp, true);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_Table(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return write_report(kTableReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_Tree(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return write_report(kTreeReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_Field(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return write_report(kFieldReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_Lookup(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return write_report(kLookupReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_CtrlTag(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return write_report(kControlTagReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_Lang(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return write_report(kLanguageReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_DSend(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return write_report(kDataSendReport, Fname, ASCIIFname, IsTemp);
}

std::u16string TarvelVtrOut_InOut::GetOutputFileName(const std::u16string& Fname, const std::u16string& DescName,
                                                     std::u16string& VTRFname) {
  const OutputName name = trvtrout::GetOutputFileName(services_, Fname, DescName);
  if (name.base_name) VTRFname = *name.base_name;
  return name.path;
}

Boolean TarvelVtrOut_InOut::Delete_ASCII(const std::u16string& ASCIIFname) {
  return guarded(
      [&] {
        const auto file_system = services_.files.CreateFileSystemObject();
        if (!file_system->FileExists(ASCIIFname)) {
          warn(u"File " + ASCIIFname + u" does not exists.");
          return fail({.what = "the file does not exist"});
        }
        file_system->DeleteFile(ASCIIFname);
        return True;
      },
      [&](const Failure& failure) { return fail(failure); });
}

}  // namespace trvtrout
