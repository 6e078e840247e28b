#pragma once

// Scopes in which a grid is filled: without a trace for undo, and without a word to its observers until the
// end.

#include "center/grid/entry_grid.h"

namespace vicenter::center {

class Unrecorded {
  public:
    explicit Unrecorded(EntryGrid& grid) : grid_(grid), recorder_(grid.Recorder()) {
        grid_.SetRecorder(nullptr);
    }
    Unrecorded(const Unrecorded&) = delete;
    Unrecorded& operator=(const Unrecorded&) = delete;
    ~Unrecorded() { grid_.SetRecorder(recorder_); }

  private:
    EntryGrid& grid_;
    GridRecorder* recorder_;
};

class Unpainted {
  public:
    explicit Unpainted(EntryGrid& grid) : grid_(grid) { grid_.SetReDraw(false); }
    Unpainted(const Unpainted&) = delete;
    Unpainted& operator=(const Unpainted&) = delete;
    ~Unpainted() { grid_.SetReDraw(true); }

  private:
    EntryGrid& grid_;
};

}  // namespace vicenter::center
