#include "app/package_kit_remover.h"

#include <QAtomicInteger>
#include <QDBusConnection>
#include <QDBusInterface>
#include <QDBusObjectPath>
#include <QDBusReply>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <optional>

namespace sondrel {

namespace {

const QString kService = QStringLiteral("org.freedesktop.PackageKit");
const QString kPath = QStringLiteral("/org/freedesktop/PackageKit");
const QString kTransaction = QStringLiteral("org.freedesktop.PackageKit.Transaction");
constexpr quint64 kFilterInstalled = 1ULL << 2; // PK_FILTER_ENUM_INSTALLED
constexpr quint64 kFlagSimulate = 1ULL << 2;    // PK_TRANSACTION_FLAG_ENUM_SIMULATE
constexpr uint kExitSuccess = 1;                // PK_EXIT_ENUM_SUCCESS
constexpr uint kExitCancelled = 3;              // PK_EXIT_ENUM_CANCELLED
constexpr int kResolveTimeoutMs = 120 * 1000;
constexpr int kRemoveTimeoutMs = 30 * 60 * 1000;

} // namespace

/// Collects one transaction's signals until it finishes.
class PackageKitTransaction : public QObject {
    Q_OBJECT
public:
    QStringList packageIds;
    QString errorDetails;
    uint exitCode = 0;
    bool finished = false;
    QEventLoop loop;

public slots:
    void package(uint info, const QString& packageId, const QString& summary) {
        Q_UNUSED(info);
        Q_UNUSED(summary);
        packageIds.append(packageId);
    }
    void errorCode(uint code, const QString& details) {
        Q_UNUSED(code);
        errorDetails = details;
    }
    void done(uint exit, uint runtime) {
        Q_UNUSED(runtime);
        exitCode = exit;
        finished = true;
        loop.quit();
    }
};

namespace {

// One bus connection for the calling thread, closed when it goes.
class BusConnection {
public:
    explicit BusConnection(const QString& address) : m_name(nextName()) {
        m_connection = address.isEmpty()
                           ? QDBusConnection::connectToBus(QDBusConnection::SystemBus, m_name)
                           : QDBusConnection::connectToBus(address, m_name);
    }
    ~BusConnection() { QDBusConnection::disconnectFromBus(m_name); }
    BusConnection(const BusConnection&) = delete;
    BusConnection& operator=(const BusConnection&) = delete;
    QDBusConnection& get() { return m_connection; }

private:
    static QString nextName() {
        static QAtomicInteger<int> counter;
        return QStringLiteral("sondrel-packagekit-%1").arg(counter.fetchAndAddRelaxed(1));
    }
    QString m_name;
    QDBusConnection m_connection{QString()};
};

// Runs `method(args)` on a fresh transaction and waits for it to finish; false when PackageKit
// did not answer (no service, no transaction, a timeout).
bool runTransaction(QDBusConnection& bus, const QString& method, const QVariantList& args,
                    int timeoutMs, PackageKitTransaction& transaction) {
    if (!bus.isConnected()) {
        return false;
    }
    QDBusInterface packageKit(kService, kPath, kService, bus);
    const QDBusReply<QDBusObjectPath> created =
        packageKit.call(QStringLiteral("CreateTransaction"));
    if (!created.isValid()) {
        return false;
    }
    const QString path = created.value().path();
    bus.connect(kService, path, kTransaction, QStringLiteral("Package"), &transaction,
                SLOT(package(uint, QString, QString)));
    bus.connect(kService, path, kTransaction, QStringLiteral("ErrorCode"), &transaction,
                SLOT(errorCode(uint, QString)));
    bus.connect(kService, path, kTransaction, QStringLiteral("Finished"), &transaction,
                SLOT(done(uint, uint)));
    QDBusInterface call(kService, path, kTransaction, bus);
    const QDBusMessage reply = call.callWithArgumentList(QDBus::Block, method, args);
    if (reply.type() == QDBusMessage::ErrorMessage) {
        transaction.errorDetails = reply.errorMessage();
        return true;
    }
    if (!transaction.finished) {
        QTimer::singleShot(timeoutMs, &transaction.loop, &QEventLoop::quit);
        transaction.loop.exec();
    }
    return transaction.finished;
}

// The installed package ids of `name`; nothing when PackageKit does not answer.
std::optional<QStringList> resolve(QDBusConnection& bus, const std::string& name) {
    PackageKitTransaction transaction;
    if (!runTransaction(bus, QStringLiteral("Resolve"),
                        {QVariant::fromValue(kFilterInstalled),
                         QVariant::fromValue(QStringList{QString::fromStdString(name)})},
                        kResolveTimeoutMs, transaction)) {
        return std::nullopt;
    }
    return transaction.packageIds;
}

std::string nameOf(const QString& packageId) {
    return packageId.section(QLatin1Char(';'), 0, 0).toStdString();
}

bool handledByPackageKit(const AppInfo& app) {
    return (app.kind == AppKind::debian || app.kind == AppKind::snap) && !app.package.empty();
}

} // namespace

PackageKitRemover::PackageKitRemover(std::shared_ptr<PackageRemover> fallback, QString busAddress)
    : m_fallback(std::move(fallback)), m_busAddress(std::move(busAddress)) {}

std::vector<std::string> PackageKitRemover::alsoRemoved(const AppInfo& app) {
    if (!handledByPackageKit(app)) {
        return m_fallback->alsoRemoved(app);
    }
    BusConnection bus(m_busAddress);
    const auto ids = resolve(bus.get(), app.package);
    if (!ids || ids->isEmpty()) {
        return m_fallback->alsoRemoved(app);
    }
    PackageKitTransaction transaction;
    if (!runTransaction(
            bus.get(), QStringLiteral("RemovePackages"),
            {QVariant::fromValue(kFlagSimulate), QVariant::fromValue(*ids), true, false},
            kResolveTimeoutMs, transaction)) {
        return m_fallback->alsoRemoved(app);
    }
    std::vector<std::string> others;
    for (const QString& id : transaction.packageIds) {
        const std::string name = nameOf(id);
        if (name != app.package && std::find(others.begin(), others.end(), name) == others.end()) {
            others.push_back(name);
        }
    }
    return others;
}

PackageRemoval PackageKitRemover::remove(const AppInfo& app) {
    if (!handledByPackageKit(app)) {
        return m_fallback->remove(app);
    }
    BusConnection bus(m_busAddress);
    const auto ids = resolve(bus.get(), app.package);
    if (!ids || ids->isEmpty()) {
        return m_fallback->remove(app);
    }
    PackageKitTransaction transaction;
    if (!runTransaction(bus.get(), QStringLiteral("RemovePackages"),
                        {QVariant::fromValue(quint64{0}), QVariant::fromValue(*ids), true, false},
                        kRemoveTimeoutMs, transaction)) {
        return PackageRemoval{false, false, "PackageKit did not finish the removal"};
    }
    PackageRemoval removal;
    const QString details = transaction.errorDetails;
    if (transaction.exitCode == kExitSuccess) {
        removal.removed = true;
    } else if (transaction.exitCode == kExitCancelled ||
               details.contains(QStringLiteral("authenticat"), Qt::CaseInsensitive) ||
               details.contains(QStringLiteral("authoriz"), Qt::CaseInsensitive) ||
               details.contains(QStringLiteral("NotAuthorized"), Qt::CaseInsensitive)) {
        removal.cancelled = true;
        removal.message = "cancelled";
    } else {
        removal.message = details.isEmpty() ? std::string("PackageKit could not remove it")
                                            : details.toStdString();
    }
    return removal;
}

} // namespace sondrel

#include "package_kit_remover.moc"
