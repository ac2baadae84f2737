#pragma once
// FTP over a control connection of its own. For the sources of platform/transfer.
//
// It isn't left to libcurl, whose uploads of small files stop on a fast network (seen with 7.88.1: each tenth to
// fiftieth file on loopback, none with 20 ms of delay). When the reply to EPSV has come by the time of the call that
// sent EPSV, that call ends before the socket of the data connection is made, and names no other socket and no time to
// wait for. Whoever waits for the library then waits as long as he waits for nothing: exactly the time-out of the poll
// between EPSV and connect(2), as strace shows.

#include <memory>

#include "platform/transfer/transfer.h"

namespace kv {

/// A connection over FTP, with or without TLS.
std::unique_ptr<Transfer> makeFtpTransfer();

}  // namespace kv
