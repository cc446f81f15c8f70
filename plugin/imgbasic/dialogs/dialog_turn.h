#pragma once

#include <utility>

namespace imgbasic {

/// Takes the turn of the one options dialog that can be open, for as long as it lives: what a
/// dialog runs through the host gets no other one.
class DialogTurn {
  public:
    DialogTurn() : mine_(!std::exchange(taken_, true)) {}
    ~DialogTurn() {
        if (mine_) {
            taken_ = false;
        }
    }
    DialogTurn(const DialogTurn&) = delete;
    DialogTurn& operator=(const DialogTurn&) = delete;

    bool IsMine() const { return mine_; }

  private:
    static inline bool taken_ = false;
    bool mine_;
};

}  // namespace imgbasic
