static KVLineOutput __kvLineOutput;

