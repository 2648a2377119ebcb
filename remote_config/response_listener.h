// The response reader's listener: the delivery thread's side of the hand-over.
#pragma once

#include "remote_config/client.h"

void ZUL_RoutingService_Administration_CommandResponseListener_on_data_available(void* listenerData,
                                                                                 DDS_DataReader* reader);

// The listener of a client's response reader. Both product variants use it.
DDS_DataReaderListener ROUTERRemoteConfigClient_responseListener(ROUTERRemoteConfigClient* client);
