#pragma once

#include <QString>

namespace trv5 {

// State as a small XML fragment that a host stores with its own documents and hands back later.
// The operations and their order are shared with hosts that talk to the library through this
// interface, so neither may change.
class ISimpleSerializable {
public:
    virtual ~ISimpleSerializable() = default;

    // The current state as one XML element; empty when the object has nothing to persist or
    // writing failed.
    virtual QString ToString() = 0;
    // Replaces the state with what the fragment holds. Never throws: a fragment that does not
    // parse changes nothing, and a damaged one keeps what was read before the damage.
    virtual void FromString(const QString& pText) = 0;
    // True when the fragment belongs to this kind of object.
    virtual bool IsTypeOf(const QString& pText) = 0;

protected:
    ISimpleSerializable() = default;
    ISimpleSerializable(const ISimpleSerializable&) = default;
    ISimpleSerializable& operator=(const ISimpleSerializable&) = default;
};

} // namespace trv5
