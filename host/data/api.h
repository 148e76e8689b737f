// The client library's interfaces, as the files of this folder use them. No other folder includes this.
#pragma once

#include <firebird/Interface.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace orv::fb {

using Status = Firebird::CheckStatusWrapper;

Firebird::IMaster* Master();
// A provider for one call or more; released by its holder.
struct Release {
  template <class T>
  void operator()(T* object) const {
    object->release();
  }
};
template <class T>
using Ref = std::unique_ptr<T, Release>;

// The status of calls made one after the other.
class Call {
 public:
  Call() : status_(Master()->getStatus()) {}
  ~Call() { status_.dispose(); }
  Call(const Call&) = delete;
  Call& operator=(const Call&) = delete;

  // Clears the status for the next call.
  Status* operator()() {
    status_.init();
    return &status_;
  }
  bool Failed() const { return (status_.getState() & Firebird::IStatus::STATE_ERRORS) != 0; }
  const Status& Get() const { return status_; }

 private:
  Status status_;
};

// Runs a call that makes an attachment: the first one replaces the handlers of SIGTERM and SIGINT, which are
// put back.
void KeepingSignals(const std::function<void()>& attach);

// A block of tagged parameters, as attaching and the services take it.
class ParameterBlock {
 public:
  explicit ParameterBlock(unsigned char version) : bytes_(1, static_cast<char>(version)) {}
  ParameterBlock() = default;
  ParameterBlock& Tag(unsigned char tag);
  // One length byte; at most 255 bytes.
  ParameterBlock& Text(unsigned char tag, std::string_view text);
  // Two length bytes.
  ParameterBlock& LongText(unsigned char tag, std::string_view text);
  // Four bytes, with a length byte before them.
  ParameterBlock& Number(unsigned char tag, unsigned number);
  // Four bytes without a length, as the actions of a service take them.
  ParameterBlock& Plain(unsigned char tag, unsigned number);
  unsigned Size() const { return static_cast<unsigned>(bytes_.size()); }
  const unsigned char* Data() const { return reinterpret_cast<const unsigned char*>(bytes_.data()); }

 private:
  std::string bytes_;
};

}  // namespace orv::fb
