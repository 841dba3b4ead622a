// SPDX-License-Identifier: MIT
// What takes part: an operation on a problem, by the library, by the plain implementation or by a
// peer.
#pragma once

#include "matrix.hpp"

#include <sys/types.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace bench {

// The operands; which of them exist is up to the operation.
struct problem {
  matrix a;
  matrix b;                  // second summand, or prolongation
  matrix r;                  // restriction
  array<double> x;           // a vector
  array<std::int32_t> rows;  // coordinate lists in the order given; columns and
  matrix listed;             // values of the entries are those of `listed`
  array<std::int32_t> weights;
  std::string file;  // a path that belongs to this contestant
};

struct duration {
  double wall = 0;  // seconds
  double cpu = 0;   // seconds of this process, all of its threads
};

class contestant {
 public:
  contestant() = default;
  contestant(const contestant&) = delete;
  contestant& operator=(const contestant&) = delete;
  virtual ~contestant() = default;

  // Not timed: drops the last result and lays out what `run` will change. Vectors to be written
  // are zero, so that a call to which they are given does not pay for their memory.
  virtual void prepare() = 0;
  virtual duration run() = 0;
  // The result of the last run.
  virtual answer take() = 0;
  // Whose memory the call needs.
  [[nodiscard]] virtual pid_t process() const;
};

using maker = std::function<std::unique_ptr<contestant>(const problem&)>;

// Times `call`.
duration timed(const std::function<void()>& call);

// A call that makes a result: `run` returns it, `take` translates it.
template <class Run, class Take>
class making final : public contestant {
 public:
  making(Run call, Take translate) : call_(std::move(call)), translate_(std::move(translate)) {}
  void prepare() override { result_.reset(); }
  duration run() override {
    return timed([this] { result_.emplace(call_()); });
  }
  answer take() override { return translate_(*result_); }

 private:
  Run call_;
  Take translate_;
  std::optional<decltype(std::declval<Run&>()())> result_;
};

template <class Run, class Take>
std::unique_ptr<contestant> makes(Run run, Take take) {
  return std::make_unique<making<Run, Take>>(std::move(run), std::move(take));
}

// A call that changes what it is given: `copy` lays it out, `change` changes it, `take` translates.
template <class Copy, class Change, class Take>
class changing final : public contestant {
 public:
  changing(Copy copy, Change change, Take translate)
      : copy_(std::move(copy)), change_(std::move(change)), translate_(std::move(translate)) {}
  void prepare() override {
    state_.reset();
    state_.emplace(copy_());
  }
  duration run() override {
    return timed([this] { change_(*state_); });
  }
  answer take() override { return translate_(*state_); }

 private:
  Copy copy_;
  Change change_;
  Take translate_;
  std::optional<decltype(std::declval<Copy&>()())> state_;
};

template <class Copy, class Change, class Take>
std::unique_ptr<contestant> changes(Copy copy, Change change, Take take) {
  return std::make_unique<changing<Copy, Change, Take>>(std::move(copy), std::move(change),
                                                        std::move(take));
}

// A library that is compared with, and what it can do.
struct contribution {
  std::string operation;
  maker make;
};
struct peer {
  std::string name;
  std::vector<contribution> contributions;
};

// Every peer that was found when this was configured.
const std::vector<peer>& peers();

}  // namespace bench
