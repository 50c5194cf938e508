#pragma once
// Removing Debian packages (and Snaps, where the PackageKit backend knows them) through
// PackageKit over D-Bus, which asks for the password through polkit itself. Where PackageKit
// does not answer, or does not know the package, the fallback remover does the work.

#include "platform/app_uninstaller.h"

#include <QString>
#include <memory>

namespace sondrel {

/// A PackageRemover over the PackageKit D-Bus service. Each call opens its own bus connection
/// on the calling thread and runs a local event loop until the transaction finishes, so it may
/// be called from any worker thread (never from the GUI thread: it blocks).
class PackageKitRemover final : public PackageRemover {
public:
    /// Uses the system bus, or the bus at `busAddress` when given (tests run a private bus).
    /// `fallback` (not null) handles Flatpaks and whatever PackageKit cannot.
    explicit PackageKitRemover(std::shared_ptr<PackageRemover> fallback, QString busAddress = {});

    /// Packages a simulated PackageKit removal would take with the app's package (its own
    /// package left out); the fallback's answer when PackageKit is absent or does not know it.
    std::vector<std::string> alsoRemoved(const AppInfo& app) override;
    /// Removes the app's package through PackageKit (dependents allowed, as shown beforehand).
    /// A refused or dismissed authorisation is "cancelled"; the fallback runs only when
    /// PackageKit is absent or does not know the package.
    PackageRemoval remove(const AppInfo& app) override;

private:
    std::shared_ptr<PackageRemover> m_fallback;
    QString m_busAddress;
};

} // namespace sondrel
