#pragma once
// How libjpeg reports a failure: it calls back, and the callback must not return. It jumps to where the routine has
// called setjmp, and on its way no destructor runs, so a routine that sets `back` holds no object that needs one.

#include <csetjmp>
#include <cstddef>
#include <cstdio>
// jpeglib.h needs std::size_t and FILE declared before it.
#include <jerror.h>
#include <jpeglib.h>

namespace kv {

/// What libjpeg calls when something is wrong, and where the callback jumps to.
struct JpegFailing {
  jpeg_error_mgr calls;  // first, so that libjpeg's pointer to it points to this as well
  std::jmp_buf back;
};

/// libjpeg's error_exit: jumps to `back`.
[[noreturn]] inline void leaveJpeg(j_common_ptr jpeg) {
  std::longjmp(reinterpret_cast<JpegFailing*>(jpeg->err)->back, 1);
}
/// libjpeg's emit_message: warnings go nowhere.
inline void keepJpegSilent(j_common_ptr, int) {}

/// Sets both callbacks; the caller then calls setjmp(failing.back).
inline jpeg_error_mgr* prepare(JpegFailing& failing) {
  jpeg_std_error(&failing.calls);
  failing.calls.error_exit = leaveJpeg;
  failing.calls.emit_message = keepJpegSilent;
  return &failing.calls;
}

/// Called at the end of the bytes. libjpeg's own memory source would invent further ones.
inline boolean leaveJpegAtEnd(j_decompress_ptr jpeg) { leaveJpeg(reinterpret_cast<j_common_ptr>(jpeg)); }

/// Opens a decompressor on bytes in memory that fails at their end.
inline void openJpeg(jpeg_decompress_struct& jpeg, const unsigned char* bytes, unsigned long count) {
  jpeg_create_decompress(&jpeg);
  jpeg_mem_src(&jpeg, bytes, count);
  jpeg.src->fill_input_buffer = leaveJpegAtEnd;
}

}  // namespace kv
