// Messages of a bus whose bodies nobody has looked at.
#pragma once

#include "platform/gnustep/AppleEvents/Bus.h"

#include <string>

/// A line from one end of which any bytes may be sent as a message's body. The bus would refuse
/// most of them; what reads them must not rely on it.
class CRawMessages
{
public:
    enum class Kind
    {
        Call,
        Return,
        Error
    };

    CRawMessages();
    ~CRawMessages();
    CRawMessages(const CRawMessages&) = delete;
    CRawMessages& operator=(const CRawMessages&) = delete;

    /// The message as its receiver holds it. The types must be ones that a message can have.
    AppleEvents::MessageRef Pass(Kind kind, const std::string& types, const std::string& body);

    sd_bus* Bus() const { return m_bus.get(); }

private:
    static int Keep(sd_bus_message* message, void* self, sd_bus_error* error);

    int m_nEnd = -1;
    AppleEvents::BusRef m_bus;
    AppleEvents::MessageRef m_passed;
};
