static KVInputWatch __kvInputWatch;

