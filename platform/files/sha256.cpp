#include "platform/files/sha256.h"

#include <nettle/base16.h>
#include <nettle/base64.h>
#include <nettle/sha2.h>
#include <vector>

namespace trvtrout::platform {
namespace {

static_assert(std::tuple_size_v<Sha256> == SHA256_DIGEST_SIZE);

class Hash {
 public:
  Hash() { sha256_init(&state_); }
  void add(std::span<const unsigned char> bytes) { sha256_update(&state_, bytes.size(), bytes.data()); }
  Sha256 digest() {
    Sha256 result;
    sha256_digest(&state_, result.size(), result.data());
    return result;
  }

 private:
  sha256_ctx state_;
};

}  // namespace

Sha256 sha256(std::string_view bytes) {
  Hash hash;
  hash.add({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
  return hash.digest();
}

Sha256 sha256(const std::function<std::size_t(std::span<unsigned char>)>& read) {
  Hash hash;
  std::vector<unsigned char> piece(65536);
  while (const std::size_t size = read(piece)) hash.add({piece.data(), size});
  return hash.digest();
}

std::string hex(const Sha256& digest) {
  std::string text(BASE16_ENCODE_LENGTH(digest.size()), '\0');
  base16_encode_update(text.data(), digest.size(), digest.data());
  return text;
}

std::string base64(const Sha256& digest) {
  std::string text(BASE64_ENCODE_RAW_LENGTH(digest.size()), '\0');
  base64_encode_raw(text.data(), digest.size(), digest.data());
  return text;
}

}  // namespace trvtrout::platform
