#include "platform/transfer/ftp_transfer.h"
#include "platform/transfer/transfer.h"

namespace kv {

std::unique_ptr<Transfer> makeTransfer() { return makeFtpTransfer(); }

}  // namespace kv
