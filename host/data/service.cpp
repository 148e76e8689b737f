#include "host/data/service.h"

#include <algorithm>
#include <cstdint>
#include <vector>

#include "host/data/fault.h"

namespace orv::fb {
namespace {

// The largest answer: lengths in it are two bytes.
constexpr std::size_t kAnswer = 32768;

unsigned Length(const unsigned char* at) { return at[0] | (at[1] << 8); }

}  // namespace

Service::Service(const DatabaseAddress& address) : database_(address.name) {
  const Credentials credentials = CredentialsFor(address);
  ParameterBlock parameters;
  parameters.Tag(isc_spb_version).Tag(isc_spb_current_version);
  parameters.Text(isc_spb_user_name, credentials.user);
  if (!credentials.password.empty()) parameters.Text(isc_spb_password, credentials.password);
  Ref<Firebird::IProvider> provider(Master()->getDispatcher());
  Call call;
  const std::string manager = address.server + "service_mgr";
  KeepingSignals([&] {
    service_ = provider->attachServiceManager(call(), manager.c_str(), parameters.Size(), parameters.Data());
  });
  Check(call, {}, database_);
}

Service::~Service() {
  Call call;
  service_->detach(call());
  if (call.Failed()) service_->release();
}

void Service::Start(const ParameterBlock& task) {
  Call call;
  service_->start(call(), task.Size(), task.Data());
  Check(call, {}, database_);
}

void Service::Run(const std::function<void(std::string_view)>& output,
                  const std::function<std::string_view(std::size_t)>& input) {
  std::vector<unsigned char> answer(kAnswer);
  std::string_view give;
  // At the end of what there is the answer is empty: without one the task would ask for ever.
  bool asked = false;
  Call call;
  for (;;) {
    std::vector<unsigned char> send;
    if (asked) {
      send = {isc_info_svc_line, static_cast<unsigned char>(give.size() & 0xff),
              static_cast<unsigned char>(give.size() >> 8)};
      send.insert(send.end(), give.begin(), give.end());
      send.push_back(isc_info_end);
    }
    const unsigned char ask[] = {isc_info_svc_to_eof, isc_info_svc_stdin};
    service_->query(call(), static_cast<unsigned>(send.size()), send.data(), input ? 2 : 1, ask,
                    static_cast<unsigned>(answer.size()), answer.data());
    Check(call, {}, database_);
    asked = false;
    bool more = false;
    for (const unsigned char* at = answer.data(); *at != isc_info_end;) {
      const unsigned char tag = *at++;
      if (tag == isc_info_svc_to_eof || tag == isc_info_svc_line) {
        const unsigned length = Length(at);
        if (length > 0) output({reinterpret_cast<const char*>(at + 2), length}), more = true;
        at += 2 + length;
      } else if (tag == isc_info_svc_stdin) {
        const unsigned wanted = Length(at) | (Length(at + 2) << 16);
        at += 4;
        if (wanted > 0) {
          give = input(std::min<std::size_t>(wanted, 32000));
          asked = more = true;
        }
      } else if (tag == isc_info_truncated || tag == isc_info_data_not_ready || tag == isc_info_svc_timeout) {
        more = true;
      } else {
        break;
      }
    }
    if (!more) return;
  }
}

std::string NameAtServer(const DatabaseAddress& address) {
  return address.name.substr(address.server.size());
}

}  // namespace orv::fb
