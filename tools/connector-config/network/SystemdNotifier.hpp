/// Tells systemd what the program is doing, where systemd has asked for it.
#pragma once

namespace connector_config {

/// Sends messages as sd_notify(3) describes them to the socket that NOTIFY_SOCKET names. Without
/// that variable, or where a message cannot be sent, nothing happens: the program works without
/// systemd.
class SystemdNotifier {
public:
    SystemdNotifier();
    ~SystemdNotifier();
    SystemdNotifier(const SystemdNotifier&) = delete;
    SystemdNotifier& operator=(const SystemdNotifier&) = delete;

    void ready() const;     ///< the program serves; also after `reloading`
    void reloading() const; ///< the program reads its files again
    void stopping() const;  ///< the program ends

private:
    void send(const char* message) const;

    int socket = -1;
};

} // namespace connector_config
