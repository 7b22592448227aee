  _instances.Forget(this);
