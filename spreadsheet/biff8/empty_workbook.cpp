#include "spreadsheet/biff8/biff8_workbook.h"
#include "spreadsheet/biff8/compound_file.h"
#include "spreadsheet/biff8/records.h"

namespace trvtrout::spreadsheet {

using namespace biff8;

namespace {

std::string bof() {
  constexpr std::uint16_t kBuild = 3515, kYear = 1996;
  return ByteWriter().u16(kVersion).u16(kGlobalsSubstream).u16(kBuild).u16(kYear).u32(0x00C1).u32(0x0006).take();
}

std::string window() {
  return ByteWriter().u16(480).u16(90).u16(17000).u16(11000).u16(0x0038).u16(0).u16(0).u16(0).u16(600).take();
}

std::string font() {
  constexpr std::uint16_t kTenPoints = 200, kAutomaticColor = 0x7FFF, kNormalWeight = 400;
  ByteWriter body;
  body.u16(kTenPoints).u16(0).u16(kAutomaticColor).u16(kNormalWeight).zeros(6);
  return body.u8(5).raw(text_units(u"Arial")).take();
}

std::string xf(std::uint16_t flags) {
  constexpr std::uint8_t kBottom = 0x20;
  return ByteWriter().u16(0).u16(0).u16(flags).u8(kBottom).zeros(11).u16(0x20C0).take();
}

}  // namespace

std::string empty_biff8() {
  constexpr int kFonts = 4, kStyleXfs = 15;
  constexpr std::uint16_t kUnicode = 1200, kLockedStyle = 0xFFF5, kLockedCell = 0x0001;
  std::string stream;
  append_record(stream, {kBof, bof()});
  append_record(stream, {kCodePage, ByteWriter().u16(kUnicode).take()});
  append_record(stream, {kWindow1, window()});
  append_record(stream, {kDateMode, ByteWriter().u16(0).take()});
  for (int index = 0; index < kFonts; ++index) append_record(stream, {kFont, font()});
  for (int index = 0; index < kStyleXfs; ++index) append_record(stream, {kXf, xf(kLockedStyle)});
  append_record(stream, {kXf, xf(kLockedCell)});
  // The built-in style "Normal", of the first XF.
  append_record(stream, {kStyle, ByteWriter().u16(0x8000).u8(0).u8(0xFF).take()});
  append_record(stream, {kEof, {}});
  stream.resize(std::max<std::size_t>(stream.size(), CompoundFile::kMiniCutoff));
  return compound_file_of(u"Workbook", stream);
}

}  // namespace trvtrout::spreadsheet
