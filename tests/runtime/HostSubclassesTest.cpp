// Subclasses of the components and records, written as a host application writes them: from
// the documented signatures, with `override` and no noexcept specifier. That they compile
// is the first half of the test; the second is that a call through the base class reaches them,
// and that the library's own calls between operations do too.

#include "PallixRuntime.h"

#include <QWidget>

#include <gtest/gtest.h>

#include <string>

namespace {

class HostValue : public PRuntimeValue {
public:
    void remove(EPALLIX_RUNTIME_VALUE key) override {
        removed = static_cast<int>(key);
        PRuntimeValue::remove(key);
    }
    int removed = -1;
};

class HostCloud : public PRuntimeCloud {
public:
    const NString& version() const override { return m_hostVersion; }

private:
    NString m_hostVersion = "host";
};

class HostHash : public PRuntimeCloudApplicationHash {
public:
    const NString& url() const override { return m_mirror; }

private:
    NString m_mirror = "https://mirror.example/";
};

class HostPackage : public PRuntimeCloudDevicePluginsItem {
public:
    const NString& hash() const override { return m_hash; }

private:
    NString m_hash = "host digest";
};

class HostRule : public PRuntimeCloudDeviceProcessItem {
public:
    const NString& name() const override { return m_name; }

private:
    NString m_name = "host rule";
};

class HostCpidRow : public PRuntimeInfoCpid {
public:
    bool support() const override { return true; }
};

class HostCrashRow : public PRuntimeInfoCrash {
public:
    bool isMatch(const NString& key) const override { return key == "host"; }
};

class HostRestoreRow : public PRuntimeInfoRestoreError {
public:
    long long code() const override { return 4013; }
};

class HostMapping : public PRuntimePluginMapping {
public:
    bool find(const NString& version, NString& out) const override {
        out = "host-" + version;
        return true;
    }
    using PRuntimePluginMapping::find;
};

class HostRestoreErrors : public PRuntimeRestoreError {
public:
    void append(const PRuntimeInfoRestoreError& row) override {
        ++appends;
        PRuntimeRestoreError::append(row);
    }
    int appends = 0;
};

class HostRestore : public PRuntimeRestore {
public:
    PRuntimeRestoreError* restoreError() override { return &m_errors; }

private:
    PRuntimeRestoreError m_errors;
};

class HostNotifyItem : public PRuntimeNotifyItem {
public:
    NString title() const override { return "host title"; }
};

class HostWindow : public PRuntimeWindow {
public:
    QWidget* rootParent(QWidget* widget) const override {
        ++calls;
        return PRuntimeWindow::rootParent(widget);
    }
    mutable int calls = 0;
};

} // namespace

TEST(HostSubclasses, ValueStoreReachesTheOverride) {
    HostValue host;
    PRuntimeValue& values = host;
    values.remove(EPALLIX_RUNTIME_VALUE(3));
    EXPECT_EQ(host.removed, 3);
}

TEST(HostSubclasses, CloudAndItsItemsReachTheOverrides) {
    HostCloud cloud;
    EXPECT_EQ(static_cast<const PRuntimeCloud&>(cloud).version(), "host");
    HostHash hash;
    EXPECT_EQ(static_cast<const PRuntimeCloudApplicationHash&>(hash).url(),
              "https://mirror.example/");
    HostPackage package;
    EXPECT_EQ(static_cast<const PRuntimeCloudDevicePluginsItem&>(package).hash(), "host digest");
    HostRule rule;
    EXPECT_EQ(static_cast<const PRuntimeCloudDeviceProcessItem&>(rule).name(), "host rule");
}

TEST(HostSubclasses, TableRowsReachTheOverrides) {
    HostCpidRow cpid;
    EXPECT_TRUE(static_cast<const PRuntimeInfoCpid&>(cpid).support());
    HostCrashRow crash;
    EXPECT_TRUE(static_cast<const PRuntimeInfoCrash&>(crash).isMatch("host"));
    EXPECT_FALSE(static_cast<const PRuntimeInfoCrash&>(crash).isMatch("other"));
    HostRestoreRow restore;
    EXPECT_EQ(static_cast<const PRuntimeInfoRestoreError&>(restore).code(), 4013);
}

TEST(HostSubclasses, TablesReachTheOverrides) {
    HostMapping mapping;
    NString plugin;
    EXPECT_TRUE(static_cast<const PRuntimePluginMapping&>(mapping).find("16.1", plugin));
    EXPECT_EQ(plugin, "host-16.1");

    // format() appends every row through the virtual table.
    HostRestoreErrors errors;
    PRuntimeRestoreError& table = errors;
    ASSERT_TRUE(table.format(NString(PALLIX_SAMPLES_DIR "/restore-error.xml")));
    EXPECT_GT(errors.appends, 0);
}

TEST(HostSubclasses, RestoreReachesTheOverride) {
    HostRestore host;
    PRuntimeRestore& restore = host;
    PRuntimeRestore plain;
    EXPECT_NE(restore.restoreError(), plain.restoreError());
    EXPECT_EQ(restore.restoreError(), host.restoreError());
}

TEST(HostSubclasses, NotificationRecordReachesTheOverride) {
    HostNotifyItem item;
    EXPECT_EQ(static_cast<const PRuntimeNotifyItem&>(item).title(), "host title");
}

TEST(HostSubclasses, WindowGeometryAsksTheOverriddenRootParent) {
    HostWindow host;
    QWidget top;
    top.resize(400, 300);
    QWidget child(&top);
    child.resize(100, 100);
    static_cast<const PRuntimeWindow&>(host).relativeX(&child);
    EXPECT_EQ(host.calls, 1);
}
