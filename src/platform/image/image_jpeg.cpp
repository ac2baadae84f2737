// The size of a JPEG by libjpeg, which reports a failure by calling back and never returning from there.
#include <csetjmp>
#include <cstdio>
// jpeglib.h needs std::size_t and FILE declared before it.
#include <jpeglib.h>

#include "platform/image/image_codecs.h"

namespace kv {
namespace {

struct Failing {
  jpeg_error_mgr calls;  // first, so that libjpeg's pointer to it points to this as well
  std::jmp_buf back;
};

[[noreturn]] void giveUp(j_common_ptr jpeg) { std::longjmp(reinterpret_cast<Failing*>(jpeg->err)->back, 1); }
void keepSilent(j_common_ptr, int) {}

// Called at the end of the bytes. libjpeg's own memory source would invent further ones.
boolean giveUpAtEnd(j_decompress_ptr jpeg) { giveUp(reinterpret_cast<j_common_ptr>(jpeg)); }

// The jump calls no destructors, so no object in here may need one.
bool readHeader(const unsigned char* bytes, unsigned long count, ImageSize* size) {
  jpeg_decompress_struct jpeg;
  Failing failing;
  jpeg.err = jpeg_std_error(&failing.calls);
  failing.calls.error_exit = giveUp;
  failing.calls.emit_message = keepSilent;
  if (setjmp(failing.back) != 0) {
    jpeg_destroy_decompress(&jpeg);
    return false;
  }
  jpeg_create_decompress(&jpeg);
  jpeg_mem_src(&jpeg, bytes, count);
  jpeg.src->fill_input_buffer = giveUpAtEnd;
  jpeg_read_header(&jpeg, TRUE);
  *size = {static_cast<int>(jpeg.image_width), static_cast<int>(jpeg.image_height)};  // each at most 65500
  jpeg_destroy_decompress(&jpeg);
  return true;
}

}  // namespace

Result<ImageSize> jpegSize(std::string_view bytes) {
  ImageSize size;
  if (!readHeader(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), &size)) {
    return badPicture("The JPEG's header is damaged or cut off");
  }
  return size;
}

}  // namespace kv
