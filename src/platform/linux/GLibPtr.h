// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gio/gio.h>

#include <memory>

namespace korvane {

struct GLibRelease {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
    void operator()(GVariantIter* iterator) const { g_variant_iter_free(iterator); }
    void operator()(GMainContext* context) const { g_main_context_unref(context); }
    void operator()(char* text) const { g_free(text); }
    void operator()(gpointer object) const { g_object_unref(object); }
};

/// Owns one reference to a GLib value: a variant, a main context, a text or any object.
template <class T>
using GLibPtr = std::unique_ptr<T, GLibRelease>;

/// The error of a GLib call, where there is one.
class GLibError {
  public:
    GLibError() = default;
    GLibError(const GLibError&) = delete;
    GLibError& operator=(const GLibError&) = delete;
    ~GLibError() { g_clear_error(&error_); }

    /// Where the call puts it; an earlier one is dropped.
    GError** out() {
        g_clear_error(&error_);
        return &error_;
    }
    explicit operator bool() const { return error_ != nullptr; }
    const GError* get() const { return error_; }

    /// True for the D-Bus error of this name.
    bool is(const char* remoteName) const {
        const GLibPtr<char> name(error_ ? g_dbus_error_get_remote_error(error_) : nullptr);
        return g_strcmp0(name.get(), remoteName) == 0;
    }

  private:
    GError* error_ = nullptr;
};

}  // namespace korvane
