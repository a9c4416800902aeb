// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/SecretServiceClient.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvane {
namespace {

constexpr const char* busName = "org.freedesktop.secrets";
constexpr const char* servicePath = "/org/freedesktop/secrets";
constexpr const char* serviceInterface = "org.freedesktop.Secret.Service";
constexpr const char* collectionInterface = "org.freedesktop.Secret.Collection";
constexpr const char* itemInterface = "org.freedesktop.Secret.Item";
constexpr const char* noPath = "/";
constexpr const char* contentType = "application/octet-stream";

SecureItemStatus statusOf(const GLibError& error) {
    if (error.is("org.freedesktop.Secret.Error.IsLocked")) return secureItemLocked;
    if (error.is("org.freedesktop.Secret.Error.NoSuchObject")) return secureItemNotFound;
    struct Row {
        GQuark domain;
        int code;
        SecureItemStatus status;
    };
    const std::array rows = {
        Row{G_IO_ERROR, G_IO_ERROR_CANCELLED, secureItemTimedOut},
        Row{G_IO_ERROR, G_IO_ERROR_TIMED_OUT, secureItemTimedOut},
        Row{G_IO_ERROR, G_IO_ERROR_CLOSED, secureItemNotAvailable},
        Row{G_DBUS_ERROR, G_DBUS_ERROR_SERVICE_UNKNOWN, secureItemNotAvailable},
        Row{G_DBUS_ERROR, G_DBUS_ERROR_NAME_HAS_NO_OWNER, secureItemNotAvailable},
        Row{G_DBUS_ERROR, G_DBUS_ERROR_NO_REPLY, secureItemNotAvailable},  // it went away during the call
        Row{G_DBUS_ERROR, G_DBUS_ERROR_DISCONNECTED, secureItemNotAvailable},
        Row{G_DBUS_ERROR, G_DBUS_ERROR_SPAWN_CHILD_EXITED, secureItemNotAvailable},
        Row{G_DBUS_ERROR, G_DBUS_ERROR_SPAWN_EXEC_FAILED, secureItemNotAvailable},
        Row{G_DBUS_ERROR, G_DBUS_ERROR_TIMED_OUT, secureItemTimedOut},
        Row{G_DBUS_ERROR, G_DBUS_ERROR_LIMITS_EXCEEDED, secureItemBusy},
        Row{G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_OBJECT, secureItemNotFound},
    };
    const auto row = std::find_if(rows.begin(), rows.end(), [&error](const Row& candidate) {
        return g_error_matches(error.get(), candidate.domain, candidate.code);
    });
    return row == rows.end() ? secureItemFailed : row->status;
}

GVariant* dictionary(const std::map<std::string, std::string>& entries) {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE("a{ss}"));
    for (const auto& [name, value] : entries)
        g_variant_builder_add(&builder, "{ss}", name.c_str(), value.c_str());
    return g_variant_builder_end(&builder);
}

}  // namespace

SecretServiceClient::~SecretServiceClient() {
    const char* const session = service_ ? secret_service_get_session_dbus_path(service_.get()) : nullptr;
    if (!session) return;
    // The daemon would keep it for as long as the connection lives, which the process shares.
    g_dbus_connection_call(connection_.get(), busName, session, "org.freedesktop.Secret.Session", "Close",
                           nullptr, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
}

SecureItemStatus SecretServiceClient::connect() {
    GLibError error;
    connection_.reset(g_bus_get_sync(G_BUS_TYPE_SESSION, cancellable_.get(), error.out()));
    if (!connection_) {
        const bool cancelled = g_cancellable_is_cancelled(cancellable_.get());
        return cancelled ? secureItemTimedOut : secureItemNotAvailable;  // whatever is wrong with the bus
    }
    // Or GLib ends the host's process when the bus goes. libsecret knows no connection but the shared one.
    g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
    service_.reset(secret_service_open_sync(SECRET_TYPE_SERVICE, busName, SECRET_SERVICE_OPEN_SESSION,
                                            cancellable_.get(), error.out()));
    return service_ ? secureItemSuccess : statusOf(error);
}

GLibPtr<GVariant> SecretServiceClient::call(const char* path, const char* interface, const char* method,
                                            GVariant* arguments, const char* replyType,
                                            SecureItemStatus& status) {
    GLibError error;
    GLibPtr<GVariant> reply(g_dbus_connection_call_sync(
        connection_.get(), busName, path, interface, method, arguments, G_VARIANT_TYPE(replyType),
        G_DBUS_CALL_FLAGS_NONE, G_MAXINT, cancellable_.get(), error.out()));
    status = reply ? secureItemSuccess : statusOf(error);
    return reply;
}

std::string SecretServiceClient::alias(const char* name, SecureItemStatus& status) {
    const auto reply =
        call(servicePath, serviceInterface, "ReadAlias", g_variant_new("(s)", name), "(o)", status);
    if (!reply) return {};
    const char* path = nullptr;
    g_variant_get(reply.get(), "(&o)", &path);
    return g_str_equal(path, noPath) ? "" : path;
}

/// Remembers the prompt and says whether there is one.
bool SecretServiceClient::waitsForPrompt(const char* path) {
    prompt_ = g_str_equal(path, noPath) ? "" : path;
    return !prompt_.empty();
}

void SecretServiceClient::showPrompt() {
    g_dbus_connection_call(connection_.get(), busName, prompt_.c_str(), "org.freedesktop.Secret.Prompt",
                           "Prompt", g_variant_new("(s)", ""), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
                           nullptr, nullptr);
}

SecureItemStatus SecretServiceClient::openCollection() {
    SecureItemStatus status = secureItemSuccess;
    collection_ = alias("login", status);
    if (collection_.empty() && status != secureItemTimedOut) collection_ = alias("default", status);
    if (status == secureItemNotFound) return secureItemNoCollection;
    if (status != secureItemSuccess) return status;
    if (collection_.empty()) return secureItemNoCollection;

    // Also tells whether it is locked: an open one comes back at once.
    const char* const collections[] = {collection_.c_str()};
    const auto reply = call(servicePath, serviceInterface, "Unlock",
                            g_variant_new("(@ao)", g_variant_new_objv(collections, 1)), "(aoo)", status);
    if (!reply) return status == secureItemNotFound ? secureItemNoCollection : status;
    const GLibPtr<GVariant> unlocked(g_variant_get_child_value(reply.get(), 0));
    if (g_variant_n_children(unlocked.get()) == 1) return secureItemSuccess;
    const char* prompt = nullptr;
    g_variant_get_child(reply.get(), 1, "&o", &prompt);
    return waitsForPrompt(prompt) ? secureItemLocked : secureItemNoCollection;
}

GLibPtr<GVariant> SecretServiceClient::property(const char* path, const char* interface, const char* name,
                                                SecureItemStatus& status) {
    const auto reply = call(path, "org.freedesktop.DBus.Properties", "Get",
                            g_variant_new("(ss)", interface, name), "(v)", status);
    if (!reply) return nullptr;
    GVariant* value = nullptr;
    g_variant_get(reply.get(), "(v)", &value);
    return GLibPtr<GVariant>(value);
}

SecretServiceClient::Attributes SecretServiceClient::attributesOf(const std::string& item,
                                                                  SecureItemStatus& status) {
    const auto found = property(item.c_str(), itemInterface, "Attributes", status);
    Attributes attributes;
    if (!found || !g_variant_is_of_type(found.get(), G_VARIANT_TYPE("a{ss}"))) return attributes;
    GVariantIter each;
    g_variant_iter_init(&each, found.get());
    const char *name = nullptr, *value = nullptr;
    while (g_variant_iter_next(&each, "{&s&s}", &name, &value)) attributes.emplace(name, value);
    return attributes;
}

SecureItemStatus SecretServiceClient::find() {
    items_.clear();
    SecureItemStatus status = secureItemSuccess;
    const Attributes named{{"service", attributes_.at("service")}, {"account", attributes_.at("account")}};
    const auto reply = call(collection_.c_str(), collectionInterface, "SearchItems",
                            g_variant_new("(@a{ss})", dictionary(named)), "(ao)", status);
    if (!reply) return status == secureItemNotFound ? secureItemNoCollection : status;
    const GLibPtr<GVariant> paths(g_variant_get_child_value(reply.get(), 0));
    for (gsize i = 0; i < g_variant_n_children(paths.get()); ++i) {
        const char* path = nullptr;
        g_variant_get_child(paths.get(), i, "&o", &path);
        const Attributes found = attributesOf(path, status);
        const auto has = [&found](const auto& each) {
            const auto at = found.find(each.first);
            return at != found.end() && at->second == each.second;
        };
        if (status == secureItemSuccess && !found.contains("app")) {
            call(path, itemInterface, "Delete", nullptr, "(o)", status);
        } else if (std::all_of(attributes_.begin(), attributes_.end(), has)) {
            items_.emplace_back(path);
        }
        if (status != secureItemSuccess && status != secureItemNotFound) return status;
    }
    return items_.empty() ? statusWhenNothingFound() : secureItemSuccess;
}

/// A collection that was locked in the meantime shows no items: that must not read as none.
SecureItemStatus SecretServiceClient::statusWhenNothingFound() {
    SecureItemStatus status = secureItemSuccess;
    const auto locked = property(collection_.c_str(), collectionInterface, "Locked", status);
    if (!locked) return status == secureItemNotFound ? secureItemNoCollection : status;
    const bool open =
        g_variant_is_of_type(locked.get(), G_VARIANT_TYPE_BOOLEAN) && !g_variant_get_boolean(locked.get());
    return open ? secureItemNotFound : secureItemLocked;
}

GVariant* SecretServiceClient::encode(std::string_view value) {
    SecretValue* secret = secret_value_new(value.data(), static_cast<gssize>(value.size()), contentType);
    GVariant* encoded = secret_service_encode_dbus_secret(service_.get(), secret);
    secret_value_unref(secret);
    return encoded;
}

SecureItemStatus SecretServiceClient::create(std::string_view value) {
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Label",
                          g_variant_new_string(attributes_.at("service").c_str()));
    g_variant_builder_add(&properties, "{sv}", "org.freedesktop.Secret.Item.Attributes",
                          dictionary(attributes_));
    SecureItemStatus status = secureItemSuccess;
    const auto reply =
        call(collection_.c_str(), collectionInterface, "CreateItem",
             g_variant_new("(a{sv}@(oayays)b)", &properties, encode(value), FALSE), "(oo)", status);
    if (!reply) return status == secureItemNotFound ? secureItemNoCollection : status;
    const char* prompt = nullptr;
    g_variant_get_child(reply.get(), 1, "&o", &prompt);
    return waitsForPrompt(prompt) ? secureItemLocked : secureItemSuccess;
}

SecureItemStatus SecretServiceClient::replace(std::string_view value) {
    SecureItemStatus status = secureItemSuccess;
    for (const std::string& item : items_) {
        call(item.c_str(), itemInterface, "SetSecret", g_variant_new("(@(oayays))", encode(value)), "()",
             status);
        if (status != secureItemSuccess) break;
    }
    return status;
}

SecureItem SecretServiceClient::read() {
    SecureItem item;
    const auto reply = call(items_.front().c_str(), itemInterface, "GetSecret",
                            g_variant_new("(o)", secret_service_get_session_dbus_path(service_.get())),
                            "((oayays))", item.status);
    if (!reply) return item;
    const GLibPtr<GVariant> encoded(g_variant_get_child_value(reply.get(), 0));
    SecretValue* secret = secret_service_decode_dbus_secret(service_.get(), encoded.get());
    if (!secret) return {secureItemFailed, std::nullopt};
    gsize size = 0;
    const char* bytes = secret_value_get(secret, &size);
    item.value.emplace(bytes, size);
    secret_value_unref(secret);
    return item;
}

SecureItemStatus SecretServiceClient::erase() {
    for (const std::string& item : items_) {
        SecureItemStatus status = secureItemSuccess;
        const auto reply = call(item.c_str(), itemInterface, "Delete", nullptr, "(o)", status);
        if (!reply) return status;
        const char* prompt = nullptr;
        g_variant_get(reply.get(), "(&o)", &prompt);
        if (waitsForPrompt(prompt)) return secureItemLocked;
    }
    return secureItemSuccess;
}

}  // namespace korvane
