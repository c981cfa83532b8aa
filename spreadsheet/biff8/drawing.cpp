#include "spreadsheet/biff8/drawing.h"

#include <algorithm>

// Drawing records nest: a head of version and instance (16 bits), type (16 bits) and length (32 bits), then either
// fields or further records. Shapes are numbered in clusters of 1,024; each cluster belongs to one drawing.
namespace trvtrout::spreadsheet::biff8 {
namespace {

enum DrawingType : std::uint16_t {
  kGroupContainer = 0xF000,
  kDrawingContainer = 0xF002,
  kShapesContainer = 0xF003,
  kShapeContainer = 0xF004,
  kGroup = 0xF006,
  kDrawingHead = 0xF008,
  kShapeGroup = 0xF009,
  kShape = 0xF00A,
  kProperties = 0xF00B,
  kAnchor = 0xF010,
  kClientData = 0xF011,
  kMenuColors = 0xF11E,
};

constexpr std::size_t kHead = 8;
constexpr std::uint16_t kContainer = 0x000F;
constexpr std::uint32_t kShapesPerCluster = 1024;
constexpr std::uint32_t kShapes = 2;  // the layer itself and the drop-down
constexpr std::uint16_t kGreatestDrawing = 0x0FFE;

// In the group's record, behind its head.
constexpr std::size_t kGreatestShape = 0, kClusters = 4, kSavedShapes = 8, kSavedDrawings = 12, kFirstCluster = 16;
constexpr std::size_t kClusterSize = 8;

std::string drawing_record(std::uint16_t instance, std::uint16_t type, std::string_view body) {
  const auto length = static_cast<std::uint32_t>(body.size());
  return ByteWriter().u16(instance).u16(type).u32(length).raw(body).take();
}

std::string empty_group() {
  ByteWriter group, properties, colors;
  group.u32(0).u32(1).u32(0).u32(0);
  properties.u16(0x00BF).u32(0x00080008).u16(0x0181).u32(0x08000041).u16(0x01C0).u32(0x08000040);
  colors.u32(0x0800000D).u32(0x0800000C).u32(0x08000017).u32(0x100000F7);
  return drawing_record(kContainer, kGroupContainer,
                        drawing_record(0, kGroup, group.bytes()) +
                            drawing_record(0x0033, kProperties, properties.bytes()) +
                            drawing_record(0x0040, kMenuColors, colors.bytes()));
}

// The group's records from its first one as far as they hold the list of clusters, with which it begins. What follows
// them stays as it is.
class ListRecords {
 public:
  ListRecords(const Globals& globals, std::size_t begin)
      : globals_(globals), end_(begin + 1), body_(globals.records[begin].body) {
    extend(2 * kHead + kFirstCluster);
    const auto length = get<std::uint32_t>(body_, kHead + 4);
    const auto clusters = get<std::uint32_t>(body_, 2 * kHead + kClusters);
    if (get<std::uint16_t>(body_, 2) != kGroupContainer || get<std::uint16_t>(body_, kHead + 2) != kGroup ||
        clusters == 0 || length != kFirstCluster + std::uint64_t{kClusterSize} * (clusters - 1))
      raise_inconsistent();
    extend(2 * kHead + std::size_t{length});
  }

  std::size_t end() const { return end_; }
  std::string take_body() { return std::move(body_); }

 private:
  [[noreturn]] static void raise_inconsistent() { raise_damaged("its list of drawings is inconsistent"); }

  void extend(std::size_t size) {
    for (; body_.size() < size; ++end_) {
      const auto type = end_ < globals_.records.size() ? globals_.records[end_].type : std::uint16_t{kEof};
      if (type != kContinue && type != kMsoDrawingGroup) raise_inconsistent();
      body_ += globals_.records[end_].body;
    }
  }

  const Globals& globals_;
  std::size_t end_;
  std::string body_;
};

}  // namespace

Drawing with_shapes(Globals& globals, const Drawing& drawing, std::uint32_t shapes) {
  const std::vector<std::size_t> groups = globals.all(kMsoDrawingGroup);
  const std::uint32_t cluster = drawing.first_shape / kShapesPerCluster;
  if (groups.empty() || cluster == 0) raise_damaged("a drawing in it belongs to no list of drawings");
  ListRecords records(globals, groups.front());
  std::string body = records.take_body();
  const auto raise_to = [&body](std::size_t at, std::uint32_t least) {
    put(body, 2 * kHead + at, std::max(get<std::uint32_t>(body, 2 * kHead + at), least));
  };
  constexpr std::size_t kShapesInCluster = 4;
  const std::uint32_t behind = drawing.first_shape % kShapesPerCluster + shapes;
  raise_to(kFirstCluster + kClusterSize * std::size_t{cluster - 1} + kShapesInCluster, behind);
  raise_to(kGreatestShape, drawing.first_shape + shapes);
  const auto saved = get<std::uint32_t>(body, 2 * kHead + kSavedShapes);
  put(body, 2 * kHead + kSavedShapes, saved + shapes - drawing.shapes);
  globals.set_body(groups.front(), records.end(), body);
  return {drawing.number, drawing.first_shape, shapes};
}

Drawing add_drawing(Globals& globals) {
  if (globals.all(kMsoDrawingGroup).empty()) globals.append({kMsoDrawingGroup, empty_group()});
  const std::size_t index = globals.all(kMsoDrawingGroup).front();
  ListRecords records(globals, index);
  std::string body = records.take_body();
  const auto field = [&body](std::size_t at) { return get<std::uint32_t>(body, 2 * kHead + at); };
  const auto raise_by = [&body](std::size_t at, std::uint32_t more) {
    put(body, at, get<std::uint32_t>(body, at) + more);
  };
  const std::uint32_t clusters = field(kClusters);
  const std::size_t end = kFirstCluster + kClusterSize * (clusters - 1);
  std::uint32_t greatest = 0;
  for (std::size_t at = kFirstCluster; at < end; at += kClusterSize) greatest = std::max(greatest, field(at));
  if (greatest >= kGreatestDrawing) throw WorkbookError("it has no room for another drawing, which a filter needs");

  const Drawing drawing{static_cast<std::uint16_t>(greatest + 1), clusters * kShapesPerCluster};
  put(body, 2 * kHead + kGreatestShape, std::max(field(kGreatestShape), drawing.first_shape + kShapes));
  raise_by(2 * kHead + kClusters, 1);
  raise_by(2 * kHead + kSavedShapes, kShapes);
  raise_by(2 * kHead + kSavedDrawings, 1);
  raise_by(4, kClusterSize);
  raise_by(kHead + 4, kClusterSize);
  body.insert(2 * kHead + end, ByteWriter().u32(drawing.number).u32(kShapes).bytes());
  globals.set_body(index, records.end(), body);
  return drawing;
}

namespace {

std::string drop_down_shape(const Drawing& drawing) {
  constexpr std::uint16_t kHostControl = 201;
  constexpr std::uint32_t kHasAnchorAndType = 0x0A00;
  ByteWriter shape, properties, anchor;
  shape.u32(drawing.first_shape + 1).u32(kHasAnchorAndType);
  properties.u16(0x007F).u32(0x01040104).u16(0x00BF).u32(0x00080008).u16(0x01BF).u32(0x00010000);
  properties.u16(0x01FF).u32(0x00080000).u16(0x03BF).u32(0x00020000);
  // From A1 to B2, moved with the cells.
  anchor.u16(1).u16(0).u16(0).u16(0).u16(0).u16(1).u16(0).u16(1).u16(0);
  return drawing_record(kContainer, kShapeContainer,
                        drawing_record((kHostControl << 4) | 2, kShape, shape.bytes()) +
                            drawing_record(0x0053, kProperties, properties.bytes()) +
                            drawing_record(0, kAnchor, anchor.bytes()) + drawing_record(0, kClientData, {}));
}

std::string layer_shape(const Drawing& drawing) {
  constexpr std::uint32_t kIsGroupAndLayer = 0x0005;
  return drawing_record(
      kContainer, kShapeContainer,
      drawing_record(0x0001, kShapeGroup, std::string(16, '\0')) +
          drawing_record(0x0002, kShape, ByteWriter().u32(drawing.first_shape).u32(kIsGroupAndLayer).bytes()));
}

// Of the common part, with which an object begins.
constexpr std::uint16_t kCommonPart = 0x0015, kComboBox = 0x0014, kFilterFlags = 0x2101, kOfProgram = 0x0100;

std::string drop_down_object() {
  constexpr std::uint16_t kScrollPart = 0x000C, kListPart = 0x0013;
  // The list part of a filter has a length that stands for no length.
  constexpr std::uint16_t kFilterList = 0x1FEE;
  ByteWriter object;
  object.u16(kCommonPart).u16(18).u16(kComboBox).u16(1).u16(kFilterFlags).zeros(12);
  object.u16(kScrollPart).u16(20).zeros(8).u16(100).u16(1).u16(10).u16(0).u16(16).u16(1);
  object.u16(kListPart).u16(kFilterList).u32(0).u16(0x0100).u16(0x0301).u16(0).u16(2).u16(8).u16(0x0057);
  object.u32(0);
  return object.take();
}

}  // namespace

namespace {

std::string layer(const Drawing& drawing, const std::string& shapes) {
  const std::string counts = ByteWriter().u32(drawing.shapes).u32(drawing.first_shape + drawing.shapes - 1).take();
  const std::string body =
      drawing_record(kContainer, kDrawingContainer,
                     drawing_record(static_cast<std::uint16_t>(drawing.number << 4), kDrawingHead, counts) +
                         drawing_record(kContainer, kShapesContainer, layer_shape(drawing) + shapes));
  std::string records;
  append_record(records, {kMsoDrawing, body});
  return records;
}

}  // namespace

std::string filter_drop_down(const Drawing& drawing) {
  std::string records = layer(drawing, drop_down_shape(drawing));
  append_record(records, {kObj, drop_down_object()});
  return records;
}

std::string empty_layer(const Drawing& drawing) { return layer(drawing, {}); }

std::optional<Drawing> drawing_of(std::string_view body) {
  constexpr std::size_t kNumber = kHead, kShapesAt = 2 * kHead, kHeadSize = 8;
  // Behind the head the shapes begin with the layer itself: a container, its group's area, its numbers.
  constexpr std::size_t kLayer = kShapesAt + kHeadSize + 2 * kHead, kArea = 16, kSize = 8;
  constexpr std::size_t kLayerShape = kLayer + kHead + kArea, kLayerNumber = kLayerShape + kHead;
  if (body.size() < kLayerNumber + kSize) return std::nullopt;
  const auto type = [body](std::size_t at) { return get<std::uint16_t>(body, at + 2); };
  if (type(0) != kDrawingContainer || type(kNumber) != kDrawingHead || type(kLayer) != kShapeGroup ||
      type(kLayerShape) != kShape)
    return std::nullopt;
  return Drawing{static_cast<std::uint16_t>(get<std::uint16_t>(body, kNumber) >> 4),
                 get<std::uint32_t>(body, kLayerNumber), get<std::uint32_t>(body, kShapesAt)};
}

bool is_filter_drop_down(std::string_view object) {
  constexpr std::size_t kType = 4, kFlags = 8;
  return object.size() >= kFlags + 2 && get<std::uint16_t>(object, 0) == kCommonPart &&
         get<std::uint16_t>(object, kType) == kComboBox && (get<std::uint16_t>(object, kFlags) & kOfProgram) != 0;
}

}  // namespace trvtrout::spreadsheet::biff8
