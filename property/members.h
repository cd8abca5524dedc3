#ifndef PROPERTY_MEMBERS_H
#define PROPERTY_MEMBERS_H

/// \file
/// What is done to every member of a record alike. A record names its members once, in order, in a
/// function that calls one of these with a pointer to each until it gets false.

/// Copies a member of \a from.
template <typename Record>
struct MemberCopy
{
    Record* to;
    const Record* from;

    template <typename Member>
    bool operator()(Member Record::*member) const
    {
        to->*member = from->*member;
        return true;
    }
};

/// Whether a member is the same in both.
template <typename Record>
struct MemberComparison
{
    const Record* one;
    const Record* other;

    template <typename Member>
    bool operator()(Member Record::*member) const
    {
        return one->*member == other->*member;
    }
};

#endif
