#include "tests/support/desktop/Accessible.h"

namespace flashwriter::testing {

namespace {

struct Unref {
    void operator()(void* object) const { g_object_unref(object); }
};

template <class Interface>
std::unique_ptr<Interface, Unref> owned(Interface* interface) {
    return std::unique_ptr<Interface, Unref>(interface);
}

// Takes a text of the library over.
std::string taken(gchar* text) {
    const std::string result = text != nullptr ? text : "";
    g_free(text);
    return result;
}

} // namespace

Accessible::Accessible(AtspiAccessible* object) : m_object(object, Unref()) {}

std::string Accessible::name() const {
    return taken(atspi_accessible_get_name(m_object.get(), nullptr));
}

std::string Accessible::description() const {
    return taken(atspi_accessible_get_description(m_object.get(), nullptr));
}

std::string Accessible::role() const {
    return taken(atspi_accessible_get_role_name(m_object.get(), nullptr));
}

std::vector<Accessible> Accessible::related(AtspiRelationType type) const {
    GArray* const relations = atspi_accessible_get_relation_set(m_object.get(), nullptr);
    std::vector<Accessible> result;
    for (guint i = 0; relations != nullptr && i < relations->len; ++i) {
        const auto relation = owned(g_array_index(relations, AtspiRelation*, i));
        if (atspi_relation_get_relation_type(relation.get()) == type) {
            for (gint n = 0; n < atspi_relation_get_n_targets(relation.get()); ++n) {
                result.emplace_back(atspi_relation_get_target(relation.get(), n));
            }
        }
    }
    if (relations != nullptr) {
        g_array_free(relations, TRUE);
    }
    return result;
}

std::string Accessible::text() const {
    const auto interface = owned(atspi_accessible_get_text_iface(m_object.get()));
    if (!interface) {
        return "";
    }
    const gint length = atspi_text_get_character_count(interface.get(), nullptr);
    return taken(atspi_text_get_text(interface.get(), 0, length, nullptr));
}

double Accessible::value() const {
    const auto interface = owned(atspi_accessible_get_value_iface(m_object.get()));
    return interface ? atspi_value_get_current_value(interface.get(), nullptr) : 0.0;
}

bool Accessible::has(AtspiStateType state) const {
    const auto states = owned(atspi_accessible_get_state_set(m_object.get()));
    return states && atspi_state_set_contains(states.get(), state) != FALSE;
}

Rectangle Accessible::place() const {
    const auto interface = owned(atspi_accessible_get_component_iface(m_object.get()));
    if (!interface) {
        return {};
    }
    AtspiRect* const extents =
        atspi_component_get_extents(interface.get(), ATSPI_COORD_TYPE_SCREEN, nullptr);
    if (extents == nullptr) {
        return {};
    }
    const Rectangle place{extents->x, extents->y, extents->width, extents->height};
    g_free(extents);
    return place;
}

std::vector<Accessible> Accessible::children() const {
    std::vector<Accessible> result;
    const gint count = atspi_accessible_get_child_count(m_object.get(), nullptr);
    for (gint i = 0; i < count; ++i) {
        AtspiAccessible* const child =
            atspi_accessible_get_child_at_index(m_object.get(), i, nullptr);
        if (child != nullptr) {
            result.emplace_back(child);
        }
    }
    return result;
}

int Accessible::processId() const {
    return static_cast<int>(atspi_accessible_get_process_id(m_object.get(), nullptr));
}

} // namespace flashwriter::testing
