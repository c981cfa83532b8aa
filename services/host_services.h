#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

#include "services/error_numbers.h"

// What the class asks of the machine that it runs on. The class is given these interfaces at its creation and reaches
// for nothing else; what stands behind them (platform/, the fakes of the tests) is the host's choice.
//
// Paths are 16-bit text with backslashes between directories. Bytes are text in the code page of the Locale.
namespace trvtrout {

namespace automation {
class Spreadsheet;  // workbook/automation.h
}

// Whole days since 30 December 1899; the fraction is the time of day (local time). Before that day the fraction still
// counts forward from midnight: -1.25 is 6 o'clock on 29 December 1899.
using Date = double;

// What a service raises: an error number that a person can look up, and what was tried on which file.
class ServiceError : public std::runtime_error {
 public:
  ServiceError(ErrorNumber number, const std::string& what) : std::runtime_error(what), number_(number) {}
  ErrorNumber number() const noexcept { return number_; }

 private:
  ErrorNumber number_;
};

// A text file being written. Destroying it without Close keeps what was written and raises nothing.
class TextStream {
 public:
  virtual ~TextStream() = default;
  // Writes the bytes of `text`, then CR LF. Raises ServiceError.
  virtual void WriteLine(std::string_view text) = 0;
  // Writes the bytes of `text`, no line end. Raises ServiceError.
  virtual void Write(std::string_view text) = 0;
  // The file is complete when this returns; raises ServiceError when it can't be completed.
  virtual void Close() = 0;
};

// "Scripting.FileSystemObject": made at the start of an operation that needs it, released before the operation returns.
class FileSystemObject {
 public:
  virtual ~FileSystemObject() = default;
  // A stream on a new or (`overwrite`) emptied file. `unicode` False: bytes of the code page. A file that can't be
  // created is left as it was. Raises ServiceError.
  virtual std::unique_ptr<TextStream> CreateTextFile(const std::u16string& path, bool overwrite, bool unicode) = 0;
  // True for a file; False for a directory and for a path that names nothing.
  virtual bool FileExists(const std::u16string& path) = 0;
  // Removes the file. Raises ServiceError.
  virtual void DeleteFile(const std::u16string& path) = 0;
};

// A file opened in binary mode. Sequential: each call goes on where the last one ended. Destroying it closes it.
class BinaryFile {
 public:
  virtual ~BinaryFile() = default;
  // Length in bytes. Raises ServiceError.
  virtual std::uint64_t Size() = 0;
  // Fills `into` from the file and returns how many bytes came: fewer than asked at the end of the file, or in front of
  // what can't be read, for which the next call raises ServiceError.
  virtual std::size_t Read(std::span<unsigned char> into) = 0;
  // The next call of Read goes on at this byte from the start, wherever the last one ended or failed. False where the
  // machine can't; it stays where it was then.
  virtual bool SkipTo(std::uint64_t /*offset*/) { return false; }
  // Raises ServiceError.
  virtual void Close() = 0;
};

// A file being written in binary mode, from its first byte on. Destroying it closes it, and what was written stays.
class BinaryOutput {
 public:
  virtual ~BinaryOutput() = default;
  // Goes on where the last call ended. Raises ServiceError; some of the bytes may have been written then.
  virtual void Write(std::string_view bytes) = 0;
  // Raises ServiceError.
  virtual void Close() = 0;
};

// The way to files.
class Files {
 public:
  virtual ~Files() = default;
  // Raises ServiceError when none can be created.
  virtual std::unique_ptr<FileSystemObject> CreateFileSystemObject() = 0;
  // Opens for reading; a file that doesn't exist is created empty. A directory, a missing directory, a file that
  // another program holds raise ServiceError.
  virtual std::unique_ptr<BinaryFile> OpenBinary(const std::u16string& path) = 0;
  // Opens for writing; a file that doesn't exist is created. One that does isn't emptied: what is longer than the bytes
  // written keeps its tail. Raises ServiceError as OpenBinary does.
  virtual std::unique_ptr<BinaryOutput> OpenBinaryOutput(const std::u16string& path) = 0;
  // Whether both paths name one file that exists, by whatever name or link. Raises nothing.
  virtual bool SameFile(const std::u16string& path, const std::u16string& other) = 0;
};

// Buttons and answers of the message box, with the platform's numbers.
enum class MessageButtons : int { kOk = 0, kYesNoCancel = 3 };
enum class MessageAnswer : int { kOk = 1, kCancel = 2, kYes = 6, kNo = 7 };

class MessageBox {
 public:
  virtual ~MessageBox() = default;
  // Shows `prompt` and returns the button that was pressed. No title: the box bears the program's own.
  virtual MessageAnswer Show(const std::u16string& prompt, MessageButtons buttons,
                             const std::optional<std::u16string>& title) = 0;
};

// The common dialog for saving; the members are set in the order in which they stand here.
class SaveDialog {
 public:
  virtual ~SaveDialog() = default;
  // Pairs of description and pattern with "|" between them.
  virtual void SetFilter(const std::u16string& filter) = 0;
  // Which pair is chosen at first, counted from 1.
  virtual void SetFilterIndex(int index) = 0;
  // The name of the source file, without directories.
  virtual void SetText(const std::u16string& text) = 0;
  // Returns when the user has closed the dialog.
  virtual void ShowSave() = 0;
  // The path to go on with; empty when the user named none.
  virtual std::u16string FileName() = 0;
};

// The host's message loop.
class MessageLoop {
 public:
  virtual ~MessageLoop() = default;
  // Handles what waits, once, and returns.
  virtual void DoEvents() = 0;
};

// Clock, date forms and code page of the machine.
class Locale {
 public:
  virtual ~Locale() = default;
  // The present local moment, to the second.
  virtual Date Now() = 0;
  // General date form: short date, blank, long time; a midnight shows no time (6/1/2004 2:11:05 PM).
  virtual std::u16string GeneralDate(Date date) = 0;
  // "d-mmm-yy hh:mm AM/PM", the colon included (1-Jun-04 02:11 PM).
  virtual std::u16string StampDate(Date date) = 0;
  // The date, time or both that a text spells in a form of the machine's settings; nothing for any other text.
  virtual std::optional<Date> ParseDate(const std::u16string& text) = 0;
  // Text to bytes of the code page; what it can't express becomes "?".
  virtual std::string Encode(const std::u16string& text) = 0;
  // Bytes of the code page to text; never fails, and Encode brings every byte sequence of the code page back.
  virtual std::u16string Decode(std::string_view bytes) = 0;
};

// What a host hands to the class at its creation. All of it must outlive the object.
struct HostServices {
  Files& files;
  MessageBox& message_box;
  SaveDialog& save_dialog;
  MessageLoop& message_loop;
  Locale& locale;
  automation::Spreadsheet& spreadsheet;
};

}  // namespace trvtrout
