#pragma once

// The shipped mapping templates as compiled-in data, made from their files at build time. Only the nodes with a
// pattern or the root flag are listed.
struct ShippedTemplateTable
{
    struct Entry
    {
        int nodeId;
        const char* pattern; // UTF-8
        bool useRoot;
    };
    struct Template
    {
        const char* name;
        const Entry* entries;
        int count;
    };

    static const Template Templates[];
    static const int Count;
};
