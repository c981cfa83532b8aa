#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "spreadsheet/bytes.h"

// A BIFF8 stream: records of a type, a length and a body. What is too long for one record goes on in CONTINUE records.
// A substream goes from a BOF to an EOF; the first one holds what concerns the whole workbook, the others are sheets.
namespace trvtrout::spreadsheet::biff8 {

enum RecordType : std::uint16_t {
  kFormula = 0x0006,
  kEof = 0x000A,
  kCalcCount = 0x000C,
  kCalcMode = 0x000D,
  kRefMode = 0x000F,
  kDelta = 0x0010,
  kIteration = 0x0011,
  kProtect = 0x0012,
  kPassword = 0x0013,
  kHeader = 0x0014,
  kFooter = 0x0015,
  kExternSheet = 0x0017,
  kName = 0x0018,
  kWindowProtect = 0x0019,
  kVerticalBreaks = 0x001A,
  kHorizontalBreaks = 0x001B,
  kNote = 0x001C,
  kSelection = 0x001D,
  kDateMode = 0x0022,
  kExternName = 0x0023,
  kLeftMargin = 0x0026,
  kRightMargin = 0x0027,
  kTopMargin = 0x0028,
  kBottomMargin = 0x0029,
  kPrintHeaders = 0x002A,
  kPrintGridLines = 0x002B,
  kFilePass = 0x002F,
  kFont = 0x0031,
  kContinue = 0x003C,
  kWindow1 = 0x003D,
  kPane = 0x0041,
  kCodePage = 0x0042,
  kPrinter = 0x004D,
  kDefColWidth = 0x0055,
  kXct = 0x0059,
  kCrn = 0x005A,
  kFileSharing = 0x005B,
  kObj = 0x005D,
  kSaveRecalc = 0x005F,
  kObjectProtect = 0x0063,
  kColInfo = 0x007D,
  kGuts = 0x0080,
  kWsBool = 0x0081,
  kGridSet = 0x0082,
  kHorizontalCenter = 0x0083,
  kVerticalCenter = 0x0084,
  kBoundSheet = 0x0085,
  kCountry = 0x008C,
  kSort = 0x0090,
  kPalette = 0x0092,
  kStandardWidth = 0x0099,
  kFilterMode = 0x009B,
  kAutoFilterInfo = 0x009D,
  kAutoFilter = 0x009E,
  kZoom = 0x00A0,
  kSetup = 0x00A1,
  kGlobalWidths = 0x00AB,
  kPivotTable = 0x00B0,
  kMulRk = 0x00BD,
  kMulBlank = 0x00BE,
  kRString = 0x00D6,
  kDbCell = 0x00D7,
  kScenarioProtect = 0x00DD,
  kXf = 0x00E0,
  kMergedCells = 0x00E5,
  kMsoDrawingGroup = 0x00EB,
  kMsoDrawing = 0x00EC,
  kPhonetic = 0x00EF,
  kSst = 0x00FC,
  kLabelSst = 0x00FD,
  kExtSst = 0x00FF,
  kTabId = 0x013D,
  kSupBook = 0x01AE,
  kConditionalFormats = 0x01B0,
  kDataValidations = 0x01B2,
  kTextObject = 0x01B6,
  kHyperlink = 0x01B8,
  kCodeName = 0x01BA,
  kRecalcId = 0x01C1,
  kDimensions = 0x0200,
  kBlank = 0x0201,
  kNumber = 0x0203,
  kLabel = 0x0204,
  kBoolErr = 0x0205,
  kRow = 0x0208,
  kIndex = 0x020B,
  kArray = 0x0221,
  kDefaultRowHeight = 0x0225,
  kTable = 0x0236,
  kWindow2 = 0x023E,
  kRk = 0x027E,
  kStyle = 0x0293,
  kFormat = 0x041E,
  kSharedFormula = 0x04BC,
  kBof = 0x0809,
  kRealTimeData = 0x0813,
  kSheetExtension = 0x0862,
  kHeaderPicture = 0x0866,
  kFeatureHead = 0x0867,
  kXfCrc = 0x087C,
  kXfExt = 0x087D,
  kAutoFilter12 = 0x087E,
  kPageLayoutView = 0x088B,
  kStyleExt = 0x0892,
  kNamePublish = 0x0893,
  kNameComment = 0x0894,
  kSortData = 0x0895,
  kNameFunctionGroup = 0x0898,
  kHeaderFooter = 0x089C,
};

inline constexpr std::size_t kRecordHead = 4;
inline constexpr std::size_t kLargestBody = 8224;
inline constexpr std::uint16_t kVersion = 0x0600;
inline constexpr std::uint16_t kGlobalsSubstream = 0x0005;
inline constexpr std::uint16_t kSheetSubstream = 0x0010;

[[noreturn]] inline void raise_older_format() {
  throw WorkbookError("it's in an older .xls format; save it as an Excel 97-2003 workbook or as .xlsx");
}

// A record where it stands in a stream.
struct RecordView {
  std::uint16_t type;
  std::size_t at;
  std::string_view body;

  std::size_t end() const { return at + kRecordHead + body.size(); }
};

// Raises WorkbookError where no whole record stands at `at`.
RecordView record_at(std::string_view stream, std::size_t at);

// A record that can be changed.
struct Record {
  std::uint16_t type;
  std::string body;

  // Numbers in the body. Raise WorkbookError, with the type, where it is too short for them.
  std::uint16_t u16(std::size_t at) const;
  std::uint32_t u32(std::size_t at) const;
  void set16(std::size_t at, std::size_t value);
  void set32(std::size_t at, std::size_t value);

 private:
  void check(std::size_t end) const;
};

void append_record(std::string& stream, const Record& record);

// A text with a length before it, of one byte for names of sheets and fonts, of two else: the units' flags byte, then
// 8 bits a unit where that is enough. `from` is a length's place. Nothing where the text is cut off.
std::optional<std::u16string> whole_text(std::string_view body, std::size_t from, std::size_t length_size);
// The same; raises WorkbookError where the text is cut off.
std::u16string read_text(std::string_view body, std::size_t from, std::size_t length_size);
// What follows the length.
std::string text_units(std::u16string_view text);

}  // namespace trvtrout::spreadsheet::biff8
