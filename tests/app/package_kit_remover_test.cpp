// PackageKitRemover against a fake PackageKit service on a private bus: the simulated removal
// names the other packages, a removal succeeds, a refused authorisation is "cancelled", and a
// package PackageKit does not know goes to the fallback.

#include "app/package_kit_remover.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QProcess>
#include <QTest>
#include <future>

namespace sondrel {
namespace {

// What the fake's transactions do.
struct FakeBehaviour {
    QStringList installed{QStringLiteral("paint")};
    QStringList removedWithPaint{QStringLiteral("paint-plugins")};
    bool refuseAuthorisation = false;
    QStringList removedIds; // what RemovePackages without simulation removed
};

class FakeTransaction : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.PackageKit.Transaction")
public:
    FakeTransaction(QDBusConnection bus, QString path, FakeBehaviour& behaviour)
        : m_bus(std::move(bus)), m_path(std::move(path)), m_behaviour(behaviour) {}

public slots:
    void Resolve(qulonglong filter, const QStringList& packages) {
        Q_UNUSED(filter);
        for (const QString& name : packages) {
            if (m_behaviour.installed.contains(name)) {
                emitPackage(name + ";1.0;amd64;installed:debian");
            }
        }
        finish(1);
    }
    void RemovePackages(qulonglong flags, const QStringList& ids, bool allowDeps, bool autoremove) {
        Q_UNUSED(allowDeps);
        Q_UNUSED(autoremove);
        if ((flags & 4) != 0) {
            for (const QString& id : ids) {
                emitPackage(id);
            }
            for (const QString& name : m_behaviour.removedWithPaint) {
                emitPackage(name + ";1.0;amd64;installed:debian");
            }
            finish(1);
            return;
        }
        if (m_behaviour.refuseAuthorisation) {
            QDBusMessage error = QDBusMessage::createSignal(
                m_path, "org.freedesktop.PackageKit.Transaction", "ErrorCode");
            error << 4u << QStringLiteral("Failed to obtain authentication.");
            m_bus.send(error);
            finish(2);
            return;
        }
        m_behaviour.removedIds = ids;
        finish(1);
    }

private:
    void emitPackage(const QString& id) {
        QDBusMessage signal =
            QDBusMessage::createSignal(m_path, "org.freedesktop.PackageKit.Transaction", "Package");
        signal << 2u << id << QStringLiteral("summary");
        m_bus.send(signal);
    }
    void finish(uint exit) {
        QDBusMessage signal = QDBusMessage::createSignal(
            m_path, "org.freedesktop.PackageKit.Transaction", "Finished");
        signal << exit << 10u;
        m_bus.send(signal);
    }
    QDBusConnection m_bus;
    QString m_path;
    FakeBehaviour& m_behaviour;
};

class FakePackageKit : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.PackageKit")
public:
    FakePackageKit(QDBusConnection bus, FakeBehaviour& behaviour)
        : m_bus(std::move(bus)), m_behaviour(behaviour) {}

public slots:
    QDBusObjectPath CreateTransaction() {
        const QString path = QStringLiteral("/%1").arg(++m_count);
        auto* transaction = new FakeTransaction(m_bus, path, m_behaviour);
        transaction->setParent(this);
        m_bus.registerObject(path, transaction, QDBusConnection::ExportAllSlots);
        return QDBusObjectPath(path);
    }

private:
    QDBusConnection m_bus;
    FakeBehaviour& m_behaviour;
    int m_count = 0;
};

// Counts what reaches it.
class CountingFallback final : public PackageRemover {
public:
    std::vector<std::string> alsoRemoved(const AppInfo&) override { return {"from-fallback"}; }
    PackageRemoval remove(const AppInfo&) override {
        ++removals;
        return PackageRemoval{true, false, {}};
    }
    int removals = 0;
};

// Runs `fn` on a worker while this thread serves the fake service.
template <typename Fn> auto onWorker(Fn fn) {
    auto future = std::async(std::launch::async, std::move(fn));
    while (future.wait_for(std::chrono::milliseconds(5)) != std::future_status::ready) {
        QCoreApplication::processEvents();
    }
    return future.get();
}

class PackageKitRemoverTest : public QObject {
    Q_OBJECT

private slots:
    void removesThroughPackageKitAndFallsBack() {
        // QProcess, not the blocking subprocess runner: the bus must keep running beside the test.
        QProcess daemon;
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address=1"});
        if (!daemon.waitForStarted(5000)) {
            QSKIP("dbus-daemon is not available");
        }
        QVERIFY(daemon.waitForReadyRead(5000));
        const QString address = QString::fromUtf8(daemon.readLine()).trimmed();
        QDBusConnection bus = QDBusConnection::connectToBus(address, "fake-packagekit");
        QVERIFY(bus.isConnected());
        FakeBehaviour behaviour;
        FakePackageKit service(bus, behaviour);
        QVERIFY(bus.registerService("org.freedesktop.PackageKit"));
        QVERIFY(bus.registerObject("/org/freedesktop/PackageKit", &service,
                                   QDBusConnection::ExportAllSlots));

        auto fallback = std::make_shared<CountingFallback>();
        PackageKitRemover remover(fallback, address);
        AppInfo paint;
        paint.name = "Paint";
        paint.kind = AppKind::debian;
        paint.package = "paint";

        const std::vector<std::string> others =
            onWorker([&] { return remover.alsoRemoved(paint); });
        QCOMPARE(others, std::vector<std::string>{"paint-plugins"});
        PackageRemoval removal = onWorker([&] { return remover.remove(paint); });
        QVERIFY(removal.removed);
        QCOMPARE(behaviour.removedIds, QStringList{"paint;1.0;amd64;installed:debian"});

        behaviour.refuseAuthorisation = true;
        removal = onWorker([&] { return remover.remove(paint); });
        QVERIFY(!removal.removed);
        QVERIFY(removal.cancelled);

        AppInfo unknown = paint;
        unknown.package = "not-there";
        removal = onWorker([&] { return remover.remove(unknown); });
        QVERIFY(removal.removed);
        QCOMPARE(fallback->removals, 1);

        QDBusConnection::disconnectFromBus("fake-packagekit");
        daemon.kill();
        daemon.waitForFinished(5000);
    }
};

} // namespace
} // namespace sondrel

QTEST_MAIN(sondrel::PackageKitRemoverTest)
#include "package_kit_remover_test.moc"
