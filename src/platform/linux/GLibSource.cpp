// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/GLibSource.h"

#include <utility>

namespace korvane {
namespace {

using Dispatch = std::function<void()>;

gboolean run(gpointer data) {
    (*static_cast<Dispatch*>(data))();
    return G_SOURCE_CONTINUE;
}

gboolean dispatchSource(GSource*, GSourceFunc callback, gpointer data) {
    return callback(data);
}

GSourceFuncs functions = {nullptr, nullptr, dispatchSource, nullptr, nullptr, nullptr};

}  // namespace

GSource* attachSource(GMainContext* context, const char* name, Dispatch dispatch) {
    GSource* source = g_source_new(&functions, sizeof(GSource));
    g_source_set_name(source, name);
    g_source_set_can_recurse(source, TRUE);
    // GLib keeps the data until a dispatch that is under way has ended, even when that destroys the source.
    g_source_set_callback(source, run, new Dispatch(std::move(dispatch)),
                          [](gpointer data) { delete static_cast<Dispatch*>(data); });
    g_source_attach(source, context);
    return source;
}

void releaseSource(GSource* source) {
    g_source_destroy(source);
    g_source_unref(source);
}

}  // namespace korvane
