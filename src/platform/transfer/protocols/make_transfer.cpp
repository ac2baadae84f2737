#include "platform/transfer/protocols/ftp_transfer.h"
#include "platform/transfer/protocols/sftp_transfer.h"
#include "platform/transfer/transfer.h"

namespace kv {

std::unique_ptr<Transfer> makeTransfer(TransferProtocol protocol) {
  return protocol == TransferProtocol::Sftp ? makeSftpTransfer() : makeFtpTransfer();
}

}  // namespace kv
