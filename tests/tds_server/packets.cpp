#include "tds_server/packets.h"

#include <algorithm>

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace vicenter::tds_server {

namespace {

constexpr std::size_t kHeader = 8;
constexpr char kLastPacket = 1;

}  // namespace

Packets::~Packets() {
    close(socket_);
}

void Packets::ReadExactly(char* to, std::size_t count) {
    while (count > 0) {
        const ssize_t got = recv(socket_, to, count, 0);
        if (got <= 0) throw LineClosed();
        to += got;
        count -= static_cast<std::size_t>(got);
    }
}

Message Packets::Read() {
    Message message;
    for (;;) {
        char header[kHeader];
        ReadExactly(header, kHeader);
        if (misbehaviour_.DropsAtPacket()) {
            Cut();
            throw LineClosed();
        }
        const std::size_t length = static_cast<std::size_t>(static_cast<unsigned char>(header[2]) << 8 |
                                                            static_cast<unsigned char>(header[3]));
        if (length < kHeader) throw LineClosed();
        message.type = static_cast<PacketType>(header[0]);
        const std::size_t at = message.data.size();
        message.data.resize(at + length - kHeader);
        ReadExactly(message.data.data() + at, length - kHeader);
        if ((header[1] & kLastPacket) != 0) return message;
    }
}

bool Packets::HasInput() const {
    return WaitForInput(0);
}

bool Packets::WaitForInput(int milliseconds) const {
    pollfd waiting{socket_, POLLIN, 0};
    return poll(&waiting, 1, milliseconds) > 0;
}

void Packets::WaitForEnd() const {
    pollfd waiting{socket_, POLLRDHUP, 0};
    poll(&waiting, 1, -1);
    throw LineClosed();
}

void Packets::Put(std::string_view bytes) {
    reply_.append(bytes);
    const std::size_t room = packetSize_ - kHeader;
    std::size_t at = 0;
    while (reply_.size() - at > room) {
        Send(false, std::string_view(reply_).substr(at, room));
        at += room;
    }
    reply_.erase(0, at);
}

void Packets::Flush() {
    Send(true, reply_);
    reply_.clear();
    packetId_ = 0;
}

void Packets::Send(bool last, std::string_view payload) {
    if (misbehaviour_.DropsAtPacket()) {
        Cut();
        throw LineClosed();
    }
    misbehaviour_.Sends(payload);
    const std::size_t length = payload.size() + kHeader;
    std::string packet;
    packet += static_cast<char>(PacketType::kReply);
    packet += last ? kLastPacket : '\0';
    packet += static_cast<char>(length >> 8);
    packet += static_cast<char>(length);
    packet.append(2, '\0');
    packet += static_cast<char>(++packetId_);
    packet += '\0';
    packet.append(payload);
    std::string_view rest = packet;
    while (!rest.empty()) {
        const std::size_t piece = std::min(rest.size(), misbehaviour_.LargestPiece());
        const ssize_t sent = send(socket_, rest.data(), piece, MSG_NOSIGNAL);
        if (sent <= 0) throw LineClosed();
        rest.remove_prefix(static_cast<std::size_t>(sent));
    }
}

void Packets::Cut() {
    shutdown(socket_, SHUT_RDWR);
}

}  // namespace vicenter::tds_server
