#include "peers.h"

#include <algorithm>

namespace bench {

namespace {

std::vector<Peer> &peers()
{
    static std::vector<Peer> all;
    return all;
}

} // namespace

const char *const messageText = "frequency set to 1000000000 Hz, level -10.50 dBm";

bool addPeer(const Peer &peer)
{
    peers().push_back(peer);
    return true;
}

const Peer *findPeer(const std::string &name)
{
    const auto found =
        std::find_if(peers().begin(), peers().end(), [&name](const Peer &peer) { return peer.name == name; });
    return found == peers().end() ? nullptr : &*found;
}

} // namespace bench
