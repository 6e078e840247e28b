#pragma once

// TDS packets over one socket: requests come in as whole messages, replies go out in packets of the agreed
// size. Belongs to the thread of its connection. Every byte that leaves or arrives passes the line's
// misbehaviour.

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tds_server/misbehaviour.h"

namespace vicenter::tds_server {

enum class PacketType : std::uint8_t {
    kBatch = 1,
    kRpc = 3,
    kReply = 4,
    kAttention = 6,
    kTransaction = 14,
    kLogin = 16,
    kPreLogin = 18,
};

// The other side is gone, or the server has cut the line on purpose.
struct LineClosed : std::runtime_error {
    LineClosed() : std::runtime_error("line closed") {}
};

struct Message {
    PacketType type{};
    std::string data;
};

class Packets {
  public:
    // Takes over the socket.
    Packets(int socket, Misbehaviour& misbehaviour) : socket_(socket), misbehaviour_(misbehaviour) {}
    Packets(const Packets&) = delete;
    Packets& operator=(const Packets&) = delete;
    ~Packets();

    Message Read();
    // Whether something waits to be read: while a request runs that is an attention.
    bool HasInput() const;
    // Waits so long, but no longer than until something can be read; true when something can.
    bool WaitForInput(int milliseconds) const;
    // Reads nothing any more; the end is LineClosed.
    [[noreturn]] void WaitForEnd() const;
    void SetPacketSize(std::size_t size) { packetSize_ = size; }
    // Appends to the reply; full packets leave at once.
    void Put(std::string_view bytes);
    // Ends the reply.
    void Flush();
    // From another thread: wakes whoever reads or writes.
    void Cut();

  private:
    void ReadExactly(char* to, std::size_t count);
    void Send(bool last, std::string_view payload);

    int socket_;
    Misbehaviour& misbehaviour_;
    std::size_t packetSize_ = 4096;
    std::uint8_t packetId_ = 0;
    std::string reply_;
};

}  // namespace vicenter::tds_server
