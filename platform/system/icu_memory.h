#pragma once

// Memory for ICU when the system refuses it.
//
// What ICU sets up once in a process, its default locale, the collation, a transliteration, does not stand a
// refusal: it waits for a lock that it holds itself, goes on with what is not there, or remembers the failure
// for as long as the process lives. So what the system refuses ICU comes out of a reserve, which takes no
// memory until then.

#include <cstddef>

namespace vicenter::system {

// Before any use of ICU, again and again. What ICU has allocated before stays good, unless the host has given
// ICU memory functions of its own: these are replaced. Any thread.
void GiveIcuItsReserve();

// A part of a fixed room, given out and taken back in any order; any thread.
class Reserve {
  public:
    Reserve(std::byte* room, std::size_t size);

    // Nullptr when there is no room.
    void* Take(std::size_t bytes);
    void GiveBack(void* block);
    bool Holds(const void* block) const;
    // What was asked for, rounded up.
    static std::size_t SizeOf(const void* block);

  private:
    struct Head {
        std::size_t size;  // of the block behind it
        bool isFree;
    };
    static constexpr std::size_t kHead = 16;
    static_assert(sizeof(Head) <= kHead);

    Head* At(std::size_t place) const { return reinterpret_cast<Head*>(room_ + place); }
    // Joins the free block there with those behind it.
    void Join(std::size_t place);

    std::byte* room_;
    std::size_t size_;
    std::size_t next_ = 0;  // where the search goes on
};

}  // namespace vicenter::system
