static KVUnitOutput __kvUnitOutput;

