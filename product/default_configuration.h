// The builtin default configuration documents, embedded from resource/xml.
#pragma once

extern const char* const ROUTER_g_routingServiceDefaultConfiguration;
extern const char* const ROUTER_g_federationServiceDefaultConfiguration;
