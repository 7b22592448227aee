 ~@C@() {
  _instances.Forget(this);
 }
