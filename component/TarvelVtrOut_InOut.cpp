#include "component/TarvelVtrOut_InOut.h"

#include "component/store.h"
#include "reports/naming.h"
#include "vtrfile/reader.h"

namespace trvtrout {
namespace {

// The scratch record for a schema of the old format, one for each apartment.
thread_local vtrfile::Slot<vtrfile::SCHEMA_STRUCT_OLD1> SchemaOld;

// The status lists are plain ASCII.
std::u16string widen(std::string_view ascii) { return {ascii.begin(), ascii.end()}; }

// What the file delivers. A read error is where it ends, unless nothing came before.
std::shared_ptr<const vtrfile::Image> image_of(BinaryFile& file) {
  constexpr std::size_t kBlock = 65536;
  auto image = std::make_shared<vtrfile::Image>(file.Size());
  const std::span whole = image->writable();
  std::size_t filled = 0;
  std::string broken_off;
  try {
    while (filled < whole.size()) {
      const std::size_t count = file.Read(whole.subspan(filled, std::min(kBlock, whole.size() - filled)));
      if (count == 0) break;
      filled += count;
    }
  } catch (const ServiceError& error) {
    if (filled == 0) throw;
    broken_off = error.what();
  }
  image->shorten(filled, broken_off);
  return image;
}

}  // namespace

TarvelVtrOut_InOut::TarvelVtrOut_InOut(const HostServices& services) : store_(std::make_unique<Store>(services)) {}
TarvelVtrOut_InOut::~TarvelVtrOut_InOut() = default;

Boolean TarvelVtrOut_InOut::Store::fail(const Failure& failure) {
  last_failure = failure;
  return False;
}

void TarvelVtrOut_InOut::Store::warn(const std::u16string& prompt, const std::u16string& title) {
  // A warning stands on failure paths too, where a box that can't be shown must not raise.
  guarded([&] { return services.message_box.Show(prompt, MessageButtons::kOk, title); },
          [](const Failure&) { return MessageAnswer::kOk; });
}

void TarvelVtrOut_InOut::Store::warn_of_file_in_use(const std::u16string& path) {
  warn(u"Can not create file: " + path + u"\r\nFile is in use. Please close file and try again.");
}

void TarvelVtrOut_InOut::Store::warn_of_version() {
  const std::u16string version = services.locale.Decode(current.Header->Version.bytes());
  warn(u"Cannot open the VTR file. VTR Output does not support strcture version: " + version +
       u"\r\nPlease send the file to Tarvel Software.");
}

bool TarvelVtrOut_InOut::Store::read(vtrfile::DocumentReader& reader, std::shared_ptr<const vtrfile::Image> image) {
  try {
    return reader.read(std::move(image));
  } catch (const vtrfile::ReadError& error) {
    damage = error;
    throw;
  }
}

Boolean TarvelVtrOut_InOut::ReadVTR(std::u16string& Fname, std::u16string& StructureList, Boolean& IsSecondary) {
  store_->damage.reset();
  store_->last_read = {};
  store_->last_salvage.reset();
  if (Fname.empty()) return store_->fail({.what = "no file was named"});
  vtrfile::DocumentReader reader(store_->current, IsSecondary ? store_->secondary : store_->primary, SchemaOld);
  std::unique_ptr<BinaryFile> file;
  const Boolean result = guarded(
      [&] {
        file = store_->services.files.OpenBinary(Fname);
        store_->services.message_loop.DoEvents();
        const bool supported = store_->read(reader, image_of(*file));
        if (!supported) store_->warn_of_version();
        close_done(file);
        return supported ? True : store_->fail({.what = "the format version is not supported"});
      },
      [&](const Failure& failure) {
        close_failed(file);
        StructureList = widen(reader.structure_list());
        return store_->fail(failure);
      });
  store_->last_read = reader.take_account();
  return result;
}

Boolean TarvelVtrOut_InOut::Store::write_report(const DetailReport& report, const std::u16string& fname,
                                                std::u16string& report_path, Boolean is_temp, bool tells_user) {
  return write_file(report_path, tells_user, [&](ReportFile& file) {
    return write_detail_report(services, current, report, fname, bool(is_temp), file);
  });
}

Boolean TarvelVtrOut_InOut::ASCII_Output_Product(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return store_->write_report(kProductReport, Fname, ASCIIFname, IsTemp, true);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_Table(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return store_->write_report(kTableReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_Tree(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return store_->write_report(kTreeReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_Field(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return store_->write_report(kFieldReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_Lookup(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return store_->write_report(kLookupReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_CtrlTag(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return store_->write_report(kControlTagReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_Lang(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return store_->write_report(kLanguageReport, Fname, ASCIIFname, IsTemp);
}
Boolean TarvelVtrOut_InOut::ASCII_Output_DSend(std::u16string& Fname, std::u16string& ASCIIFname, Boolean& IsTemp) {
  return store_->write_report(kDataSendReport, Fname, ASCIIFname, IsTemp);
}

std::u16string TarvelVtrOut_InOut::GetOutputFileName(const std::u16string& Fname, const std::u16string& DescName,
                                                     std::u16string& VTRFname) {
  const OutputName name = trvtrout::GetOutputFileName(store_->services, Fname, DescName);
  if (name.base_name) VTRFname = *name.base_name;
  return name.path;
}

Boolean TarvelVtrOut_InOut::Delete_ASCII(const std::u16string& ASCIIFname) {
  return guarded(
      [&] {
        const auto file_system = store_->services.files.CreateFileSystemObject();
        if (!file_system->FileExists(ASCIIFname)) {
          store_->warn(u"File " + ASCIIFname + u" does not exists.");
          return store_->fail({.what = "the file does not exist"});
        }
        file_system->DeleteFile(ASCIIFname);
        return True;
      },
      [&](const Failure& failure) { return store_->fail(failure); });
}

const vtrfile::DocumentSlots& TarvelVtrOut_InOut::CurrentSlots() const noexcept { return store_->current; }
const std::optional<vtrfile::ReadError>& TarvelVtrOut_InOut::LastDamage() const noexcept { return store_->damage; }
const std::string& TarvelVtrOut_InOut::LastFailure() const noexcept { return store_->last_failure.what; }
ErrorNumber TarvelVtrOut_InOut::LastErrorNumber() const noexcept { return store_->last_failure.number; }
const vtrfile::FileRead& TarvelVtrOut_InOut::LastRead() const noexcept { return store_->last_read; }
const std::optional<vtrfile::Salvaged>& TarvelVtrOut_InOut::LastSalvage() const noexcept {
  return store_->last_salvage;
}
void TarvelVtrOut_InOut::SetReportFolder(std::u16string folder) { store_->report_folder = std::move(folder); }
const ComparisonCounts& TarvelVtrOut_InOut::LastCounts() const noexcept { return store_->counts; }

}  // namespace trvtrout
