#include "serial/ReceiveThreadTicket.h"

namespace flashwriter {

bool ReceiveThreadTicket::claim() {
    State expected = State::pending;
    return m_state.compare_exchange_strong(expected, State::claimed);
}

void ReceiveThreadTicket::release() {
    m_state = State::over;
}

bool ReceiveThreadTicket::revoke() {
    State expected = State::pending;
    return m_state.compare_exchange_strong(expected, State::over);
}

bool ReceiveThreadTicket::inUse() const {
    return m_state == State::claimed;
}

} // namespace flashwriter
