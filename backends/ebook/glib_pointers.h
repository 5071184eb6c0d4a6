#pragma once

#include <glib-object.h>

#include <memory>

namespace ebook {

struct ObjectRelease {
  void operator()(void* object) const { g_object_unref(object); }
};
/// One reference to a GObject.
template <typename T>
using ObjectPointer = std::unique_ptr<T, ObjectRelease>;

/// A list that owns its members, each one reference to a GObject.
struct ObjectListFree {
  void operator()(void* list) const { g_list_free_full(static_cast<GList*>(list), g_object_unref); }
};
struct ObjectSlistFree {
  void operator()(GSList* list) const { g_slist_free_full(list, g_object_unref); }
};
using ObjectList = std::unique_ptr<GList, ObjectListFree>;
using ObjectSlist = std::unique_ptr<GSList, ObjectSlistFree>;

}  // namespace ebook
