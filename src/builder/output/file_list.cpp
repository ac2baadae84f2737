#include "builder/output/file_list.h"

#include "platform/files/files.h"

namespace kv {

void FileList::add(std::string_view path) {
  text_.append("#").append(path).append("\r\n");
  ++count_;
}

void FileList::close() { text_.append("#\r\n"); }

Result<> FileList::write(const std::string& path) const { return writeBytes(path, text_, AtLink::Replace); }

}  // namespace kv
