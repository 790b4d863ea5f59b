#include "simulator/radio/Emitters.h"

#include "simulator/radio/emitters/Limits.h"
#include "support/Fields.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

namespace simulator {

namespace {

using support::optional;

std::optional<support::Wrong> unfitTurns(const Schedule& schedule)
{
    if (!schedule.every_ms) {
        return std::nullopt;
    }
    if (!schedule.duration_ms) {
        return support::Wrong{"", "has every_ms but no duration_ms; must have both, or be on once"};
    }
    return support::notAbove("duration_ms", *schedule.duration_ms, *schedule.every_ms, "every_ms");
}

const support::Record<Schedule>& scheduleRecord()
{
    static const support::Record<Schedule> record{"schedule", "when it is on, in simulated time; always unless given",
        {
            {"from_ms", &Schedule::from_ms, time_ms(), "when it begins", optional},
            {"duration_ms", &Schedule::duration_ms, duration_ms(), "how long it is on; for ever unless given", optional},
            {"every_ms", &Schedule::every_ms, duration_ms(),
                "from one beginning to the next, with a duration_ms; once unless given", optional},
        },
        {unfitTurns}};
    return record;
}

/// An emitter of one kind: the kind's fields and those that all emitters have.
template <typename Kind>
const support::Record<Emitter>& recordOf()
{
    static const support::Record<Emitter> record = [] {
        const auto ofKind = [](auto& emitter) -> auto&
        {
            return std::get<Kind>(emitter.signal);
        };
        auto fields = support::fieldsWithin<Emitter>(Kind::record(), ofKind);
        fields.push_back({"schedule", &Emitter::schedule, scheduleRecord(), scheduleRecord().sentence(), optional});
        if (Kind::kind.fades) {
            fields.push_back({"fades", &Emitter::fades, support::flag(),
                "whether it comes over the path that the channel's fading is on", optional});
        }
        return support::Record<Emitter>(Kind::record().name(), Kind::record().sentence(), fields,
            {[ofKind](const Emitter& emitter) { return Kind::record().broken(&ofKind(emitter)); }});
    }();
    return record;
}

/// Those of one kind among a channel's emitters.
template <typename Kind>
class ListOfKind final : public support::ListType {
public:
    using ListType::ListType;

    void* add(void* list) const override { return &static_cast<std::vector<Emitter>*>(list)->emplace_back(Kind{}); }
    std::size_t size(const void* list) const override
    {
        return static_cast<std::size_t>(std::ranges::count_if(emitters(list), isOfKind));
    }
    const void* at(const void* list, std::size_t index) const override
    {
        auto found = std::ranges::find_if(emitters(list), isOfKind);
        for (; index > 0; --index) {
            found = std::find_if(std::next(found), emitters(list).end(), isOfKind);
        }
        return &*found;
    }

private:
    static const std::vector<Emitter>& emitters(const void* list) { return *static_cast<const std::vector<Emitter>*>(list); }
    static bool isOfKind(const Emitter& emitter) { return std::holds_alternative<Kind>(emitter.signal); }
};

template <typename Kind>
struct ListOfKindSpec {
    template <typename Value>
    support::TypePointer typeFor() const
    {
        const support::Record<Emitter>& item = recordOf<Kind>();
        return std::make_shared<ListOfKind<Kind>>(item.typeFor<Emitter>(), item.sentence(), 0, Kind::kind.most);
    }
};

using Emitters = std::vector<Emitter>;

template <typename... Kinds>
std::vector<support::FieldOf<Emitters>> listsOf(const std::variant<Kinds...>*)
{
    return {support::FieldOf<Emitters>(std::string(Kinds::kind.list), support::whole, ListOfKindSpec<Kinds>{},
        std::string(Kinds::kind.sentence), optional)...};
}

} // namespace

const support::Record<std::vector<Emitter>>& emittersRecord()
{
    static const support::Record<Emitters> record{
        "emitters", "what is on the air, by kind", listsOf(static_cast<const Signal*>(nullptr))};
    return record;
}

} // namespace simulator
