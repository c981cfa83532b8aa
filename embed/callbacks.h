#pragma once

#include <atomic>
#include <exception>
#include <string>
#include <string_view>

#include "embed/trvtrout.h"
#include "platform/files/watched_files.h"
#include "services/host_services.h"

// What a host answers through its callbacks, as the services that the class asks.
namespace trvtrout::embed {

// Ends an operation that the host stops.
class Stopped : public std::exception {
 public:
  const char* what() const noexcept override { return "stopped by the host"; }
};

// Raises Stopped once the host wants it, and tells of progress.
class HostWatch : public platform::FileWatch {
 public:
  explicit HostWatch(const trvtrout_host& host) : host_(host) {}

  void set_stop(bool stop) noexcept { stop_ = stop; }
  // A call begins.
  void begin() noexcept { stopped_ = false; }
  // Whether Stopped was raised since.
  bool stopped() const noexcept { return stopped_; }
  [[noreturn]] void raise_stopped();
  void require_going();
  void at(const std::u16string& path, std::uint64_t done, std::uint64_t total) override;
  // The same of what goes to a callback.
  void at_output(std::uint64_t done);

 private:
  void tell(const char* path, std::uint64_t done, std::uint64_t total);

  const trvtrout_host& host_;
  std::atomic<bool> stop_ = false;
  bool stopped_ = false;
  std::u16string path_;
  std::uint64_t told_ = 0;
};

class HostMessageBox : public MessageBox {
 public:
  // `declined` becomes true when a question is answered with Cancel.
  HostMessageBox(const trvtrout_host& host, bool& declined) : host_(host), declined_(declined) {}
  MessageAnswer Show(const std::u16string& prompt, MessageButtons buttons,
                     const std::optional<std::u16string>& title) override;

 private:
  MessageAnswer ask(const std::u16string& prompt, MessageButtons buttons, const std::optional<std::u16string>& title);

  const trvtrout_host& host_;
  bool& declined_;
};

class HostSaveDialog : public SaveDialog {
 public:
  // `declined` becomes true when no path is chosen.
  HostSaveDialog(const trvtrout_host& host, bool& declined) : host_(host), declined_(declined) {}
  void SetFilter(const std::u16string& filter) override;
  void SetFilterIndex(int index) override { filter_index_ = index; }
  void SetText(const std::u16string& text) override;
  void ShowSave() override;
  std::u16string FileName() override { return file_name_; }

 private:
  const trvtrout_host& host_;
  bool& declined_;
  std::string filter_, source_;
  int filter_index_ = 1;
  std::u16string file_name_;
};

class HostMessageLoop : public MessageLoop {
 public:
  explicit HostMessageLoop(const trvtrout_host& host) : host_(host) {}
  void DoEvents() override {
    if (host_.do_events) host_.do_events(host_.context);
  }

 private:
  const trvtrout_host& host_;
};

}  // namespace trvtrout::embed
