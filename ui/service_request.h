#pragma once

#include <memory>
#include <string>

namespace folioweld {

/// Asks a service of the session bus to open a document, as the desktop does with an entry that says
/// "DBusActivatable". Nothing here waits: the answer comes in with the events of the event loop.
class ServiceRequest {
 public:
  enum class State { Asked, Failed, Answered };

  /// The service's name is its application's; the bus starts it where it does not run.
  ServiceRequest(const std::string& service, const std::string& uri);
  ServiceRequest(const ServiceRequest&) = delete;
  ServiceRequest& operator=(const ServiceRequest&) = delete;
  /// An answer that comes later is not heard any more.
  ~ServiceRequest();

  [[nodiscard]] State Now() const;
  /// Of the service that answered; 0 when the bus does not know it.
  [[nodiscard]] int Process() const;

 private:
  struct Progress;

  std::shared_ptr<Progress> progress_;  ///< shared with the calls under way
};

}  // namespace folioweld
