// Every control message of the bus, with its fields in the order in which they are written. This list alone
// makes the structs, their builders and readers; docs/wire.md shows it.
//
//   CONTROL(type, sender, meaning, fields)   one row for each; the sender is the peer or the hub
//   FIELD(kind, name)                        one for each field; Text, or Count as BusCount reads it
#pragma once

// clang-format off
#define KQ_BUS_CONTROLS(CONTROL, FIELD)                                                                      \
    CONTROL(BusHello, "peer", "the first message. \"Client\" identifies the peer across reconnections; "     \
                              "\"Taken\" is how many of its messages are confirmed",                         \
        FIELD(Text, Client)                                                                                  \
        FIELD(Text, Nonce)                                                                                   \
        FIELD(Count, Taken))                                                                                 \
    CONTROL(BusChallenge, "hub", "a random text",                                                            \
        FIELD(Text, Challenge))                                                                              \
    CONTROL(BusProof, "peer", "the peer knows the key",                                                      \
        FIELD(Text, Proof))                                                                                  \
    CONTROL(BusWelcome, "hub", "the hub knows the key; \"Taken\" is how many of the peer's messages it has", \
        FIELD(Text, Proof)                                                                                   \
        FIELD(Count, Taken))                                                                                 \
    CONTROL(BusSubscribe, "peer", "option 0 ordinary, 1 shared; a repetition changes the option",            \
        FIELD(Text, Type)                                                                                    \
        FIELD(Text, SubType)                                                                                 \
        FIELD(Count, Option))                                                                                \
    CONTROL(BusUnsubscribe, "peer", "ends the subscription of the address",                                  \
        FIELD(Text, Type)                                                                                    \
        FIELD(Text, SubType))                                                                                \
    CONTROL(BusTaken, "hub", "how many messages the hub has received from this peer, in total",              \
        FIELD(Count, Taken))                                                                                 \
    CONTROL(BusRefused, "hub", "why the hub ends the connection, which follows",                             \
        FIELD(Text, ErrorDesc))
// clang-format on
