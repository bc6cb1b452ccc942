// zebd as one object: everything that a configuration asks for, from the database to the bus.
#pragma once

#include <cstdint>
#include <memory>

#include "libs/xmlbus/Hub.h"
#include "zeb/Config.h"
#include "zeb/Zeb.h"
#include "zeb/store/PrivateFiles.h"

namespace kq::zeb {

class Host {
 public:
    // Raises kq::Error when the database, the key file or an address cannot be used, or another zebd has the
    // data folder.
    Host(PlatformPtr platform, const Config& config, const std::shared_ptr<spdlog::logger>& log);
    ~Host();

    std::int32_t Port() const { return zeb_->Port(); }
    std::int32_t BusPort() const { return hub_->Port(); }
    // The two addresses that are listened on, as "127.0.0.1:7700" or "[::1]:7700".
    std::string Listening() const;
    std::string BusListening() const;
    // Ends all connections; answers are still written.
    void Stop();

 private:
    PlatformPtr platform_;
    std::unique_ptr<FolderLock> lock_;
    std::unique_ptr<Store> store_;
    std::unique_ptr<PasswordHasher> hasher_;
    std::unique_ptr<Executor> executor_;
    std::unique_ptr<Hub> hub_;
    std::unique_ptr<Zeb> zeb_;
    Owner owner_;
};

}  // namespace kq::zeb
